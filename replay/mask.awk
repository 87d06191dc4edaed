# Masks a recording in two runs. "collect" reads all its texts and prints one line "length TAB kind TAB original TAB
# mask" for each serial number, address, identifier and name. "mask" reads that list (longest first) and copies one text
# with every original replaced. A mask has its original's length, digits for digits, letters for letters and hexadecimal
# digits for hexadecimal digits.

BEGIN {
  h = "[0-9A-Fa-f]"
  h2 = h h
  h4 = h2 h2
  macForm = h2 "[:-]" h2 "[:-]" h2 "[:-]" h2 "[:-]" h2 "[:-]" h2 "([:-]" h2 "[:-]" h2 ")?"
  uuidForm = h4 h4 "-" h4 "-" h4 "-" h4 "-" h4 h4 h4
  ip4Form = "[0-9]+[.][0-9]+[.][0-9]+[.][0-9]+"
  ip6Form = "[0-9A-Fa-f]*:[0-9A-Fa-f:]*:[0-9A-Fa-f:]*"
  edidForm = "00[fF][fF][fF][fF][fF][fF][fF][fF][fF][fF][fF][fF]00" h h h h
  classes = split("0123456789 ABCDEF GHIJKLMNOPQRSTUVWXYZ abcdef ghijklmnopqrstuvwxyz", class, " ")
  last = "\251\252\253\254\255\256\257\260\261\262\263\264\265\266\267\270"  # the last byte of a letter beyond ASCII
  notNames = " root admin administrator daemon nobody guest shared user users test system apple mac macos library "
  keptVariables = "^(PATH|HOME|SHELL|USER|LOGNAME|PWD|OLDPWD|SHLVL|_|TERM|LANG|LC_[A-Z]+)="
  recordForm = "^[A-Za-z_][A-Za-z0-9_.-]*:([A-Za-z0-9_.-]+:)?( |$)"
  keptRecords = "^(NFSHomeDirectory|RealName|RecordName|RecordType|PrimaryGroupID|UniqueID|UserShell|GeneratedUID):"
  for (i = 32; i < 127; i++) code[sprintf("%c", i)] = i
  while (run == "mask" && (getline line < list) > 0) {
    split(line, field, "\t")
    mask[field[3]] = field[4]
    if (field[2] == "form") continue  # found by its form
    kindOf[++originals] = field[2]
    original[originals] = field[3]
  }
}

# The mask with this number; what stands before the byte "from" is kept.
function Numbered(text, from, number,   at, c, set, k, out) {
  for (at = length(text); at >= 1; at--) {
    c = substr(text, at, 1)
    set = ""
    for (k = 1; at >= from && k <= classes; k++) if (index(class[k], c)) set = class[k]
    if (at >= from && c ~ /[\200-\277]/ && substr(text, at + 1, 1) !~ /[\200-\277]/) set = last
    if (substr(text, at - 2, 2) == "\342\200") set = ""  # typographic punctuation stays
    if (set != "") {
      c = substr(set, number % length(set) + 1, 1)
      number = int(number / length(set))
    }
    out = c out
  }
  return out
}

# The same for an IPv4 address: the first number is kept, the others keep their number of digits.
function NumberedIp4(text, number,   part, k, first, count) {
  split(text, part, ".")
  for (k = 4; k > 1; k--) {
    first = length(part[k]) == 1 ? 0 : length(part[k]) == 2 ? 10 : 100
    count = first == 0 ? 10 : first == 10 ? 90 : 156
    part[k] = first + number % count
    number = int(number / count)
  }
  return part[1] "." part[2] "." part[3] "." part[4]
}

# Spellings that differ in case or separators get the same number.
function Add(kind, text, from,   id, number, masked, tries) {
  if (text in seen || text ~ /\t/) return
  id = tolower(text)
  gsub(/[:-]/, "", id)
  number = id in numberOf ? numberOf[id] : ++numbers
  for (tries = 0; tries < 1000; tries++) {
    masked = kind == "ip4" ? NumberedIp4(text, number) : Numbered(text, from, number)
    if (masked != text && !(masked in seen)) break
    number = ++numbers
  }
  numberOf[id] = number
  seen[text] = seen[masked] = 1
  print length(text) "\t" kind "\t" text "\t" masked
  if (kind == "name" && text ~ /[&<>]/) print length(Escaped(text)) "\t" kind "\t" Escaped(text) "\t" Escaped(masked)
}

function AddSerial(text) {
  gsub(/^ +| +$/, "", text)
  if (length(text) < 4 || text ~ /^[0xfF:-]+$/ || text in deviceName) return
  if (text ~ /[0-9]/ || text ~ /^[A-Z][A-Z][A-Z][A-Z][A-Z][A-Z][A-Z][A-Z]+$/) Add("serial", text, text ~ /^0x/ ? 3 : 1)
}

function AddName(text) {
  if (length(text) > 1 && text !~ /^[.]/ && !index(notNames, " " tolower(text) " ")) Add("name", text, 1)
}

# A full name counts as a whole, and each of its words of three letters or more.
function AddFullName(text,   word, count, k) {
  gsub(/^[ \t]+|[ \t]+$/, "", text)
  count = split(text, word, " ")
  if (!index(notNames, " " tolower(word[count]) " ")) AddName(text)
  for (k = 1; k <= count; k++) if (length(word[k]) > 2) AddName(word[k])
}

function AddForms(text, from, form, kind,   token, before) {
  while (match(text, form)) {
    token = substr(text, RSTART, RLENGTH)
    before = RSTART > 1 ? substr(text, RSTART - 1, 1) : ""
    text = substr(text, RSTART + RLENGTH)
    if (kind == "form" && token !~ /^[0fF:-]+$/) Add(kind, token, from)
    if (kind == "ip4" && (network || before ~ /[\/@]/) && IsIp4(token)) Add(kind, token)
    if (kind == "ip6" && IsIp6(token)) Add(kind, token, index(token, ":"))
  }
}

function IsIp4(text,   part, k) {
  split(text, part, ".")
  for (k = 1; k <= 4; k++) if (part[k] > 255 || part[k] ~ /^0./) return 0
  return part[1] != 0 && part[1] != 127 && part[1] != 255
}

function IsIp6(text) {
  return text ~ /[1-9A-Fa-f]/ && text != "::1" && (text ~ /::./ || gsub(/:/, ":", text) == 7)
}

function Escaped(text) {
  gsub(/&/, "\\&amp;", text)
  gsub(/</, "\\&lt;", text)
  gsub(/>/, "\\&gt;", text)
  return text
}

function Unescaped(text) {
  gsub(/&lt;/, "<", text)
  gsub(/&gt;/, ">", text)
  gsub(/&amp;/, "\\&", text)
  return text
}

function Byte(hex, at) {
  return 16 * index("123456789abcdef", substr(hex, at, 1)) + index("123456789abcdef", substr(hex, at + 1, 1))
}

# The serial number in the EDID descriptor that begins at this hexadecimal digit; empty for any other descriptor.
function EdidSerial(hex, at,   text, k, byte) {
  for (k = at + 10; k < at + 36 && substr(hex, at, 8) == "000000ff"; k += 2) {
    byte = Byte(hex, k)
    if (byte < 32 || byte > 126) break
    text = text sprintf("%c", byte)
  }
  sub(/ +$/, "", text)
  return text
}

# An EDID base block with both its serial numbers masked and its checksum made true again.
function MaskedEdid(hex,   at, k, text, coded, sum) {
  hex = substr(hex, 1, 24) "01010101" substr(hex, 33)
  for (at = 109; at <= 217; at += 36) {
    text = EdidSerial(hex, at)
    coded = ""
    for (k = 1; k <= length(text) && text in mask; k++) coded = coded sprintf("%02x", code[substr(mask[text], k, 1)])
    hex = substr(hex, 1, at + 9) coded substr(hex, at + 10 + length(coded))
  }
  for (at = 1; at < 255; at += 2) sum += Byte(hex, at)
  return substr(hex, 1, 254) sprintf("%02x", (256 - sum % 256) % 256)
}

function SwapForms(text, form,   out, token) {
  while (match(text, form)) {
    token = substr(text, RSTART, RLENGTH)
    out = out substr(text, 1, RSTART - 1) (token in mask ? mask[token] : token)
    text = substr(text, RSTART + RLENGTH)
  }
  return out text
}

# Names, addresses and short serial numbers are replaced only where no letter or digit adjoins.
function Swap(text, old, bounded,   out, at, before, after) {
  while ((at = index(text, old)) > 0) {
    before = at > 1 ? substr(text, at - 1, 1) : substr(out, length(out))
    after = substr(text, at + length(old), 1)
    out = out substr(text, 1, at - 1) (bounded && (before after) ~ /[A-Za-z0-9]/ ? old : mask[old])
    text = substr(text, at + length(old))
  }
  return out text
}

# The text with what follows its first bytes made unreadable.
function Blotted(text, count,   rest) {
  rest = substr(text, count + 1)
  gsub(/[A-Za-z]/, "x", rest)
  gsub(/[0-9]/, "0", rest)
  return substr(text, 1, count) (rest ~ /[\200-\377]/ ? Numbered(rest, 1, 0) : rest)
}

# Removes what the agent does not need and nobody should see: variables, user attributes, coded serials, binary data.
function Blot(text,   head) {
  if (kind == "env" && text !~ keptVariables) return Blotted(text, text ~ /^[A-Za-z_0-9]+=/ ? index(text, "=") : 0)
  if (kind == "ioreg" && text ~ /serial-number" = </) return Blotted(text, index(text, "<"))
  if (kind == "dscl") {
    head = match(text, recordForm) ? RLENGTH : 0
    if (head) kept = text ~ keptRecords
    return kept ? text : Blotted(text, head)
  }
  if (text ~ /<data>/) data = 1
  if (text ~ /<\/data>/) data = 0
  if (data && text !~ /<data>/) gsub(/[A-Za-z0-9+\/]/, "A", text)
  return text
}

run == "collect" {
  network = FILENAME ~ /SP(Network|Firewall)|env[.]txt/  # elsewhere four numbers are a version
  AddForms($0, 1, uuidForm, "form")
  AddForms($0, 10, macForm, "form")
  AddForms($0, 1, ip4Form, "ip4")
  if (network) AddForms($0, 1, ip6Form, "ip6")
  if (FILENAME == "users.txt") AddName($0)
  if (FILENAME == "computer-name.txt") AddName($0)
  if (FILENAME == "ioreg.txt" && split($0, field, "\"") > 4 && tolower(field[2]) ~ /serialnumber/) AddSerial(field[4])
}

run == "collect" && FILENAME ~ /^dscl/ {
  if (match($0, recordForm)) attribute = substr($0, 1, index($0, ":"))
  if (RLENGTH > 0) $0 = substr($0, RLENGTH + 1)
  if (attribute == "RealName:") AddFullName($0)
  for (i = 1; i <= NF && attribute == "RecordName:"; i++) AddName($i)
}

run == "collect" && match($0, /<key>.*<\/key>/) { key = tolower(substr($0, RSTART + 5, RLENGTH - 11)) }

run == "collect" && match($0, /<string>.*<\/string>/) {
  text = Unescaped(substr($0, RSTART + 8, RLENGTH - 17))
  if (key == "_name" && text ~ / /) deviceName[text]  # a drive may repeat it as its serial number
  if (key ~ /serial|udid|guid|imei|meid/ && key !~ /[.]/) AddSerial(text)  # a dot: a reporter's version
  if (key ~ /^(local_host_name|netbiosname|computer_name|host_?name)$/) AddName(text)
  if (key == "user_name" && split(text, field, /[()]/)) {
    AddFullName(field[1])
    AddName(field[2])
  }
  lower = tolower(text)
  if (match(lower, edidForm) && length(lower) >= RSTART + 255)
    for (i = 109; i <= 217; i += 36) AddSerial(EdidSerial(substr(lower, RSTART, 256), i))
}

run == "mask" {
  text = Blot($0)
  if (match(text, edidForm) && length(text) >= RSTART + 255)
    text = substr(text, 1, RSTART - 1) MaskedEdid(tolower(substr(text, RSTART, 256))) substr(text, RSTART + 256)
  text = SwapForms(SwapForms(text, uuidForm), macForm)
  word = text ~ /<key>[A-Za-z0-9_.:%-]*<\/key>/  # a word of the profiler's own
  for (i = 1; i <= originals; i++)
    if (index(text, original[i]) && !(word && kindOf[i] == "name"))
      text = Swap(text, original[i], kindOf[i] != "serial" || length(original[i]) < 8)
  printf "%s%s", (NR > 1 ? "\n" : ""), text
}
