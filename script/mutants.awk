# SPDX-License-Identifier: MIT
#
# Prints the faults that one could make in a source, a line for each: the number of the line, how
# many lines change, what the fault is, and the new text, with tabs between and \001 for line ends.
# Sources are as clang-format leaves them: an operator has blanks around it, and a statement begins
# a line.

function put(line, count, fault, text) {
    print line "\t" count "\t" fault "\t" text
}

# Puts `new` in place of what lies from `begin` on in line n, `length_` characters long.
function change(n, begin, length_, new, fault) {
    put(n, 1, fault, substr(lines[n], 1, begin - 1) new substr(lines[n], begin + length_))
}

# Every place of `old` outside of strings and comments.
function replaceEach(n, old, new,   begin, rest, offset) {
    offset = 0
    rest = code[n]
    while ((begin = index(rest, old)) > 0) {
        if (substr(rest, begin, 3) != " !=" || old == " != ") {
            change(n, offset + begin, length(old), new, "\"" old "\" becomes \"" new "\"")
        }
        offset += begin + length(old) - 1
        rest = substr(code[n], offset + 1)
    }
}

# Every place of `old` that is no part of a longer word.
function replaceEachWord(n, old, new,   begin, rest, offset) {
    offset = 0
    rest = code[n]
    while (match(rest, "(^|[^A-Za-z0-9_])" old "([^A-Za-z0-9_]|$)")) {
        begin = offset + RSTART + (substr(rest, RSTART, length(old)) == old ? 0 : 1)
        change(n, begin, length(old), new, "\"" old "\" becomes \"" new "\"")
        offset = begin + length(old) - 1
        rest = substr(code[n], offset + 1)
    }
}

# The line with its strings, characters and comment blanked out, as long as before.
function codeOf(line,   result, i, c, quote) {
    result = ""
    quote = ""
    for (i = 1; i <= length(line); ++i) {
        c = substr(line, i, 1)
        if (quote == "" && substr(line, i, 2) == "//") return result
        if (quote != "") {
            if (c == "\\") { result = result "~~"; ++i; continue }
            if (c == quote) quote = ""
            result = result "~"
        } else if (c == "\"" || (c == "'" && substr(line, i - 1, 1) !~ /[0-9a-zA-Z]/)) {
            quote = c
            result = result "~"
        } else {
            result = result c
        }
    }
    return result
}

function operators(n,   line, begin) {
    replaceEach(n, " == ", " != ")
    replaceEach(n, " != ", " == ")
    replaceEach(n, " < ", " <= ")
    replaceEach(n, " <= ", " < ")
    replaceEach(n, " > ", " >= ")
    replaceEach(n, " >= ", " > ")
    replaceEach(n, " && ", " || ")
    replaceEach(n, " || ", " && ")
    replaceEach(n, " + ", " - ")
    replaceEach(n, " - ", " + ")
    replaceEach(n, "(!", "(")
    replaceEach(n, " !", " ")
    replaceEachWord(n, "true", "false")
    replaceEachWord(n, "false", "true")
    replaceEachWord(n, "YES", "NO")
    if (code[n] !~ /YES|BOOL NO/) replaceEachWord(n, "NO", "YES")
    replaceEachWord(n, "FSSwitchStateOn", "FSSwitchStateOff")
    replaceEachWord(n, "FSSwitchStateOff", "FSSwitchStateOn")
}

function numbers(n,   rest, offset, begin, number, size) {
    offset = 0
    rest = code[n]
    while (match(rest, /(^|[^A-Za-z0-9_.'])[0-9][0-9]*(\.[0-9]+)?F?U?/)) {
        begin = RSTART
        size = RLENGTH
        if (substr(rest, begin, 1) !~ /[0-9]/) { ++begin; --size }
        number = substr(rest, begin, size)
        # No part of a longer number of another kind.
        if (substr(rest, begin + size, 1) !~ /[A-Za-z0-9_.']/) {
            change(n, offset + begin, size, more(number), number " becomes another")
        }
        offset += begin + size - 1
        rest = substr(code[n], offset + 1)
    }
}

# A number that is one more, of the same kind.
function more(number,   suffix) {
    suffix = number
    gsub(/[0-9.]/, "", suffix)
    sub(/[FU]+$/, "", number)
    if (number ~ /\./) return (number + 1) (number + 1 == int(number + 1) ? ".0" : "") suffix
    return (number + 1) suffix
}

function texts(n,   i, c, begin) {
    if (lines[n] ~ /^#/ || lines[n] ~ /extern "C"/) return
    begin = 0
    for (i = 1; i <= length(lines[n]); ++i) {
        c = substr(lines[n], i, 1)
        if (c == "\\") { ++i; continue }
        if (c != "\"" || substr(code[n], i, 1) != "~") continue
        if (begin == 0) { begin = i; continue }
        if (i > begin + 1) change(n, i, 1, "~\"", "another text")
        begin = 0
    }
}

# Whether line n begins a statement that can be left out: no declaration, no end of a function's
# way.
function isStatement(n,   text) {
    text = code[n]
    sub(/^ +/, "", text)
    if (lines[n] !~ /^ +[A-Za-z_+*(:~]/) return 0
    if (text ~ /^(const|constexpr|auto|static|using|extern|break|continue|struct|class|public|private|else|friend|template|typedef|case|default|enum|for|while|switch|do|try|catch|namespace|virtual|explicit)([ :(;]|$)/) return 0
    if (text ~ /^(if|return|throw)/) return text ~ /^(if .*|return|throw .*);$/
    if (text ~ /^[A-Za-z0-9_:<>,*& ]+[>*& ] *[A-Za-z_]+( =.*|\{.*\};|;|\(.*\) \{)$/) return 0
    if (code[n - 1] !~ /([;{}:)]|else) *$/ && code[n - 1] != "" && lines[n - 1] !~ /^ *\/\//) return 0
    return text ~ /[;(,]$/ || text ~ /[(,].*$/
}

# The line on which the statement that begins on line n ends; 0 when it is none.
function endOf(n,   i, depth) {
    depth = 0
    for (i = n; i <= count && i < n + 12; ++i) {
        depth += gsub(/[({]/, "&", code[i]) - gsub(/[)}]/, "&", code[i])
        if (depth < 0) return 0
        if (depth == 0) return code[i] ~ /; *$/ ? i : (code[i] ~ /\{ *$/ ? 0 : (i < count ? ahead(i) : 0))
    }
    return 0
}
function ahead(i) { return code[i + 1] ~ /; *$/ && code[i] !~ /[;{}] *$/ ? i + 1 : 0 }

function textOf(begin, end,   i, text) {
    text = lines[begin]
    for (i = begin + 1; i <= end; ++i) text = text "\001" lines[i]
    return text
}

# The same in one line.
function flat(text) {
    gsub(/\001? +/, " ", text)
    sub(/^ /, "", text)
    return text
}

function statements(n,   end, next_, nextEnd) {
    if (!isStatement(n)) return
    end = endOf(n)
    if (end == 0) return
    put(n, end - n + 1, "left out", indentOf(n) ";  // " flat(textOf(n, end)))
    next_ = end + 1
    if (!isStatement(next_) || indentOf(n) != indentOf(next_)) return
    nextEnd = endOf(next_)
    if (nextEnd == 0 || code[n] ~ /^ *(return|throw)/ || code[next_] ~ /^ *(return|throw)/) return
    put(n, nextEnd - n + 1, "in the other order", textOf(next_, nextEnd) "\001" textOf(n, end))
}

function indentOf(n,   text) {
    text = lines[n]
    sub(/[^ ].*$/, "", text)
    return text
}

function conditions(n) {
    if (match(code[n], /^ *(\} else )?if \(.*\) [^&|=<>]*[;{]$/) == 0) return
    put(n, 1, "the condition turned round", turned(n))
}

# if (a) ... becomes if (!(a)) ...
function turned(n,   begin, i, depth) {
    begin = index(code[n], "if (") + 3
    depth = 0
    for (i = begin; i <= length(code[n]); ++i) {
        if (substr(code[n], i, 1) == "(") ++depth
        if (substr(code[n], i, 1) == ")" && --depth == 0) break
    }
    if (substr(code[n], begin, i - begin) ~ /;| = /) return lines[n]
    return substr(lines[n], 1, begin) "!" substr(lines[n], begin, i - begin + 1) substr(lines[n], i)
}

{
    lines[NR] = $0
    code[NR] = codeOf($0)
}

END {
    count = NR
    for (n = 1; n <= count; ++n) {
        if (code[n] ~ /^ *$/ || lines[n] ~ /^#/ || code[n] ~ /static_assert/) {
            continue
        }
        operators(n)
        numbers(n)
        texts(n)
        statements(n)
        conditions(n)
    }
}
