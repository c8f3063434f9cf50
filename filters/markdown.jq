# A table of a summary in GitHub's Markdown, for a job summary, a comment or a mail:
#
#   jq -r -f markdown.jq summary.json
#
# The headline figures, then one row for each scanned file, the worst first, at most
# 200 of them.
#
# Names and texts stand in code spans: there no Markdown, HTML, emoji or math is read,
# and GitHub and GitLab look for links, mentions and references everywhere but there.
# What could end a span or its cell stands between two spans as a character reference,
# which never means markup. So what is shown can be copied as it is.

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

# White space of every kind becomes a space. Other control characters, and those that
# turn the direction of writing, become U+FFFD.
def one_line:
  explode
  | map(if (. >= 9 and . <= 13) or . == 133 or . == 8232 or . == 8233 then 32
        elif . < 32 or (. >= 127 and . < 160)
             or . == 1564 or . == 8206 or . == 8207
             or (. >= 8234 and . <= 8238) or (. >= 8294 and . <= 8297) then 65533
        else . end)
  | implode;

# One code span; nothing for nothing. Two things are undone: one space at both ends,
# which a span loses, and a colour, which GitHub and GitLab paint where it is all that
# a span holds. What looks like one has its first character outside.
def span:
  if . == "" then ""
  elif test("^ *(#|rgb|hsl)"; "i") then
    capture("^(?<front> *.)(?<rest>.*)$")
    | (.front | explode | map("&#\(.);") | join("")) + (.rest | span)
  elif test("^ .*[^ ].* $") then "` \(.) `"
  else "`\(.)`"
  end;

# "|" ends a cell even in a code span, and a backtick ends the span.
def code:
  if . == "" then "(empty)"
  else one_line | split("`") | map(split("|") | map(span) | join("&#124;")) | join("&#96;")
  end;

def codes: map(code) | join(", ");

def row($result; $why): "| \($result) | \(.relative_path | code) | \($why) |";

def report_row:
  row(.verdict;
      [if .error != "" then .error | code else empty end,
       if .failed_checks != [] then .failed_checks | codes else empty end,
       if .non_gating_checks != [] then "not gating: \(.non_gating_checks | codes)" else empty end]
      | join("; "));

def other_row:
  if .reason == "unreadable" then row("unreadable"; "") else row("no report"; "") end;

def worst_first:
  [(.reports[] | select(.verdict == "ERROR")),
   (.reports[] | select(.verdict == "FAIL")),
   (.other_files[] | select(.reason == "unreadable")),
   (.other_files[] | select(.reason != "unreadable")),
   (.reports[] | select(.verdict == "PASS"))];

as_summary
| worst_first as $files
| "## Suite Verdict: \(if .failed + .errored + (.other_files | length) == 0 then "PASS" else "FAIL" end)",
  "",
  "\(.total_reports) reports in \(.scanned_directory | code): \(.passed) passed, \(.failed) failed, "
  + "\(.errored) errored. Other files: \(.other_files | length).",
  if $files == [] then empty
  else
    "", "| Result | File | Why |", "|---|---|---|",
    ($files[:200][] | if .verdict then report_row else other_row end)
  end,
  if ($files | length) > 200 then "", "and \(($files | length) - 200) more" else empty end
