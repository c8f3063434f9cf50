# Metrics of a summary in the text exposition format, for the node exporter's textfile
# collector:
#
#   jq -r -f prometheus.jq summary.json >fthsummary.prom
#
# Every metric has the scanned directory as a label, so that the files of several
# directories can lie side by side.

def as_summary:
  if type == "object" and (.scanned_directory | type) == "string"
     and ([.total_reports, .passed, .failed, .errored] | all(type == "number"))
     and (.reports | type) == "array" and (.other_files | type) == "array"
     and (.reports | all(type == "object"
          and (.verdict == "PASS" or .verdict == "FAIL" or .verdict == "ERROR")
          and (.failed_checks | type) == "array" and (.non_gating_checks | type) == "array"))
  then .
  else error("not a summary of fthsummary")
  end;

# No label can hold U+0000 in every reader.
def escaped:
  (split("\u0000") | join("\ufffd"))
  | (split("\\") | join("\\\\")) | (split("\"") | join("\\\"")) | (split("\n") | join("\\n"));

as_summary
| "directory=\"\(.scanned_directory | escaped)\"" as $directory
| "# HELP fthsummary_reports Analyze reports, by result.",
  "# TYPE fthsummary_reports gauge",
  "fthsummary_reports{\($directory),result=\"passed\"} \(.passed)",
  "fthsummary_reports{\($directory),result=\"failed\"} \(.failed)",
  "fthsummary_reports{\($directory),result=\"errored\"} \(.errored)",
  "# HELP fthsummary_other_files Scanned files that are no analyze reports or could not be read.",
  "# TYPE fthsummary_other_files gauge",
  "fthsummary_other_files{\($directory)} \(.other_files | length)",
  "# HELP fthsummary_suite_passed 1 if the page's Suite Verdict is PASS, 0 if it is FAIL.",
  "# TYPE fthsummary_suite_passed gauge",
  "fthsummary_suite_passed{\($directory)} \(
    if .failed + .errored + (.other_files | length) == 0 then 1 else 0 end)"
