# Workflow commands of a summary: GitHub shows them as annotations.
#
#   jq -r -f github.jq summary.json
#
# One command a line: an error for each report that failed or whose run ended in an
# error and for each file that could not be read, a warning for each file that is no
# report, and nothing for a report that passed. GitHub shows few annotations of a step,
# so the worst come first.

def as_summary:
  if type == "object" and (.reports | type) == "array" and (.other_files | type) == "array"
  then .
  else error("not a summary of fthsummary")
  end;

def replaced($part; $by): if contains($part) then split($part) | join($by) else . end;

# Control characters, which a terminal or a log could obey, line breaks of other kinds
# than the two below, and characters that turn the direction of writing become U+FFFD.
# jq 1.6 sees nothing behind U+0000; it is the first to be replaced.
def without_controls:
  "[\\x00-\\x08\\x0b\\x0c\\x0e-\\x1f\\x7f-\\x{9f}\\x{2028}-\\x{202e}\\x{2066}-\\x{2069}]" as $controls
  | reduce ([match($controls; "g").string] | unique[]) as $each (.; replaced($each; "\ufffd"));

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
