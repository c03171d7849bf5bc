# What a page about the API says of each operation above its example, made of the document.

def bounds:
  if .minimum != null and .minimum == .maximum then ", \(.minimum)"
  elif .minimum != null and .maximum > 1e9 then ", \(.minimum) or more"
  elif .minimum != null then ", \(.minimum) to \(.maximum)"
  elif .maxLength != null and .maxLength > 1 then ", up to \(.maxLength) characters"
  else "" end;

def words: if .enum then ": " + (.enum | map("`\(.)`") | join(", ")) else "" end;

def parameter($name; $needed):
  "- `\($name)`" + (if $needed then "" else " (may be left out)" end) +
  " - \(.description)" + bounds + words;

def role:
  if .security == [] then "for anybody" else "role `\(.description | capture("role (?<r>\\w+)").r)`" end;

def body: .requestBody.content["application/json"].schema // {};

.paths | to_entries[] | .key as $path | .value | to_entries[] | (.key | ascii_upcase) as $verb | .value
| "### \(.operationId)", "",
  if $path == "/api/live" then "`\($path)`, role `view`, over a WebSocket. \(.summary)."
  else "`\($verb) \($path)`, \(role). \(.summary)." end, "",
  ((.parameters // [])[] | select(.in == "query") | .required as $needed | .name as $name
   | .schema | parameter($name; $needed)),
  (body | select(.description and (.properties | not)) | "- the body - \(.description)"),
  (body | (.required // []) as $required | (.properties // {}) | to_entries[]
   | .key as $name | .value | parameter($name; $required | index([$name])))
