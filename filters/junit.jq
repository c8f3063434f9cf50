# JUnit XML of a summary, for GitLab, Jenkins, Azure and most dashboards:
#
#   jq -r -f junit.jq summary.json >junit.xml
#
# One suite, named after the scanned directory, and one case for each scanned file:
#
#   PASS                 a case
#   FAIL                 a case with <failure>: the failed checks
#   ERROR                a case with <error>: the error text
#   an unreadable file   a case with <error>
#   a file, no report    a case with <skipped>
#
# Failed checks that do not decide the verdict stand in <system-out>. A case's name is
# the path without its ending, its class the folder with "." for "/"; a file directly
# in the scanned directory has an empty class. How long a report took is not known, so
# no times are given.

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

# What XML 1.0 forbids, it forbids as a reference, too. The first look, at the text
# written as JSON, is far quicker than the second.
def without_forbidden:
  if tojson | contains("\\u00") or contains("\\b") or contains("\\f")
     or contains("\ufffe") or contains("\uffff")
  then
    explode
    | map(if (. < 32 and . != 9 and . != 10 and . != 13) or . == 65534 or . == 65535 then 65533
          else . end)
    | implode
  else .
  end;

def xml: without_forbidden | @html | replaced("\r"; "&#13;");

# A reader would make spaces of these.
def xml_attribute: xml | replaced("\t"; "&#9;") | replaced("\n"; "&#10;");

# Two brackets begin an instruction to Jenkins and GitLab in a text, such as
# [[ATTACHMENT|/some/file]], which a report must not give. "[[[" needs both turns.
def xml_text: xml | replaced("[["; "[ [") | replaced("[["; "[ [");

# Reports whose paths differ in nothing but the ending keep it, or a reader would take
# them for one test and show one result. So does a file that is named ".html".
def without_ending:
  (if .[-5:] | ascii_downcase == ".html" then .[:-5]
   elif .[-4:] | ascii_downcase == ".htm" then .[:-4]
   else . end) as $short
  | if $short == "" or ($short | endswith("/")) then . else $short end;

def shared_names:
  map(.relative_path | without_ending) | group_by(.)
  | map(select(length > 1) | {key: .[0], value: true}) | from_entries;

def class_name: split("/")[:-1] | join(".");

def problem($element; $type; $message; $lines):
  "<\($element) message=\"\($message | xml_attribute)\" type=\"\($type)\">\($lines | join("\n") | xml_text)</\($element)>";

def outcome:
  if .verdict == "FAIL" then
    if .failed_checks == []
    then "The report names no failed check." as $none | problem("failure"; "FAIL"; $none; [$none])
    else problem("failure"; "FAIL"; .failed_checks | join(", "); .failed_checks)
    end
  elif .verdict == "ERROR" then
    (if .error == "" then "The report names no error." else .error end) as $error
    | problem("error"; "ERROR"; $error; [$error])
  elif .reason == "unreadable" then
    "The file could not be read." as $message | problem("error"; "unreadable"; $message; [$message])
  elif .reason then
    "<skipped>This file is no analyze report.</skipped>"
  else
    empty
  end;

def non_gating:
  if (.non_gating_checks // []) == []
  then empty
  else "<system-out>\(["Failed, but not gating:"] + .non_gating_checks | join("\n") | xml_text)</system-out>"
  end;

def case($shared):
  (.relative_path | without_ending) as $short
  | (if $shared[$short] then .relative_path else $short end) as $name
  | "<testcase name=\"\($name | xml_attribute)\" classname=\"\(.relative_path | class_name | xml_attribute)\"" as $start
  | [outcome, non_gating]
  | if . == [] then "  \($start)/>" else "  \($start)>", "    \(.[])", "  </testcase>" end;

def count(files): reduce files as $file (0; . + 1);

as_summary
| (.reports + .other_files) as $files
| ($files | shared_names) as $shared
| "<?xml version=\"1.0\" encoding=\"UTF-8\"?>",
  "<testsuite name=\"\(.scanned_directory | xml_attribute)\" tests=\"\($files | length)\""
  + " failures=\"\(count($files[] | select(.verdict == "FAIL")))\""
  + " errors=\"\(count($files[] | select(.verdict == "ERROR" or .reason == "unreadable")))\""
  + " skipped=\"\(count($files[] | select(.reason and .reason != "unreadable")))\">",
  ($files[] | case($shared)),
  "</testsuite>"
