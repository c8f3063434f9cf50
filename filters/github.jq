# Workflow commands of a summary: GitHub shows them as annotations.
#
#   jq -r -f github.jq summary.json
#
# One command a line: an error for each report that failed or whose run ended in an
# error and for each file that could not be read, a warning for each file that is no
# report, and nothing for a report that passed. GitHub shows few annotations of a step,
# so the worst come first.

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

def replaced($part; $by): if contains($part) then split($part) | join($by) else . end;

# Control characters, which a terminal or a log could obey, line breaks of other kinds
# than the two below, and characters that turn the direction of writing become U+FFFD.
def without_controls:
  explode
  | map(if (. < 32 and . != 9 and . != 10 and . != 13) or (. >= 127 and . < 160)
           or . == 1564 or . == 8206 or . == 8207
           or (. >= 8232 and . <= 8238) or (. >= 8294 and . <= 8297) then 65533
        else . end)
  | implode;

# The runner undoes these escapes; "%" comes first, or it would escape the escapes.
def data:
  without_controls | replaced("%"; "%25") | replaced("\r"; "%0D") | replaced("\n"; "%0A");

# In a property ":" could begin the message and "," the next property.
def property: data | replaced(":"; "%3A") | replaced(","; "%2C");

def command($level; $what; $message):
  "::\($level) title=\("\($what): \(.relative_path)" | property)::\($message | data)";

as_summary
| (.reports[] | select(.verdict == "ERROR")
   | command("error"; "ERROR"; if .error == "" then "The report names no error." else .error end)),
  (.other_files[] | select(.reason == "unreadable")
   | command("error"; "Unreadable"; "The file could not be read.")),
  (.reports[] | select(.verdict == "FAIL")
   | command("error"; "FAIL";
       if .failed_checks == [] then "The report names no failed check."
       else "Failed checks: \(.failed_checks | join(", "))" end)),
  (.other_files[] | select(.reason != "unreadable")
   | command("warning"; "No report"; "This file is no analyze report."))
