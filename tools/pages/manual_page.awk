# SPDX-License-Identifier: Apache-2.0
# Makes a manual page from the output of "COMMAND --help". Variables: command, "reeldb device show"; parent, the
# parent's page or empty; children, the pages of its commands.

function escaped(text)
{
  gsub(/\\/, "\\e", text)
  gsub(/-/, "\\-", text)
  return text ~ /^[.']/ ? "\\&" text : text
}

function page_of(words)
{
  gsub(/ /, "-", words)
  return words
}

# Adds a text to the current part of the page: the description or a section.
function put(text)
{
  if (section == "")
    description = description text "\n"
  else
    sections = sections text "\n"
}

function end_list()
{
  in_list = 0
}

NR == 1 {
  name = $0
  sub(/\.$/, "", name)
  next
}

/^Usage: / {
  usage = substr($0, length("Usage: " command) + 1)
  next
}

/^[A-Z][A-Za-z ]*:$/ { # the heading of a section
  section = toupper(substr($0, 1, length($0) - 1))
  if (section == "EXIT CODES")
    section = "EXIT STATUS"
  if (section == "EXAMPLE")
    section = "EXAMPLES"
  put(".SH " section)
  in_list = 1
  next
}

/^$/ { # sections end here
  if (section == "EXAMPLES")
    put(".fi")
  section = ""
  in_list = 0
  open = 0
  in_item = 0
  next
}

in_list && section == "EXAMPLES" {
  if (!open)
    put(".nf")
  open = 1
  put(escaped(substr($0, 3)))
  next
}

in_list && /^  [^ ]/ { # a name and, behind two blanks or more, what it means
  line = substr($0, 3)
  at = match(line, /  +/)
  tag = at ? substr(line, 1, at - 1) : line
  put(".TP\n.B " escaped(tag))
  if (at)
    put(escaped(substr(line, at + RLENGTH)))
  next
}

in_list && /^  / { # what goes on from the line before
  sub(/^ +/, "")
  put(escaped($0))
  next
}

/^  [^ ]/ { # an item among paragraphs: a form and what it means, in columns
  line = substr($0, 3)
  at = match(line, /  +/)
  put(".TP\n.B " escaped(at ? substr(line, 1, at - 1) : line))
  if (at)
    put(escaped(substr(line, at + RLENGTH)))
  in_item = 1
  next
}

in_item && /^  / {
  sub(/^ +/, "")
  put(escaped($0))
  next
}

{ # a paragraph: of a section when it follows it directly, otherwise of the description
  if (!open || in_list || in_item)
    put(".PP")
  open = 1
  in_item = 0
  in_list = 0
  put(escaped($0))
}

END {
  if (section == "EXAMPLES")
    put(".fi")
  print ".\\\" Made of what \"" command " --help\" prints."
  print ".TH " toupper(page_of(command)) " 1 \"\" reeldb reeldb"
  print ".SH NAME"
  print page_of(command) " \\- " tolower(substr(name, 1, 1)) escaped(substr(name, 2))
  print ".SH SYNOPSIS\n.B " command "\n" escaped(substr(usage, 2))
  print ".SH DESCRIPTION\n" escaped(name) "."
  printf "%s", description
  printf "%s", sections
  if (parent == "") {
    print ".SH ENVIRONMENT\n.TP\n.B REELDB_FACILITY"
    print "The facility to work in, without \\-C."
    print ".TP\n.B REELDB_PROJECT\nThe project to work on, without \\-p."
    print ".TP\n.B NO_COLOR\nAnything: no colours."
  } else {
    print ".SH EXIT STATUS\nAs for\n.BR reeldb (1)."
  }
  related = parent (parent != "" && children != "" ? " " : "") children
  if (related != "") {
    print ".SH SEE ALSO"
    count = split(related, pages, " ")
    for (i = 1; i <= count; ++i)
      print ".BR " escaped(pages[i]) " (1)" (i < count ? "," : "")
  }
}
