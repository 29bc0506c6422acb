# The public headers as Doxygen wants to read them. The sources stay plain: a comment in front of a
# declaration describes it and those that follow without a blank line; one behind a declaration
# describes that; one in front of a blank line belongs to the file; indented lines are shown as they
# are. Doxygen's line numbers stay right but for the lines that are given twice.

function escaped(text) {
    gsub(/[\\@<>&#%*|~$]/, "\\\\&", text)
    gsub(/"/, "\\&quot;", text)  # a quote before a backslash would mislead Doxygen
    return text
}

# The line of the collected comment belongs to a passage that is shown as it is.
function as_it_is(i) { return lines[i] ~ /^  / && !in_list[i] }

# The collected comment as one Doxygen comment; `head` comes first.
function comment(head,    i, end, margin, text) {
    for (i = 1; i <= count; ++i)
        in_list[i] = lines[i] ~ /^(- |[0-9]\. )/ || (lines[i] ~ /^  / && i > 1 && in_list[i - 1])
    text = head
    for (i = 1; i <= count; ++i) {
        if (!as_it_is(i)) {
            text = text indent "/// " escaped(lines[i]) "\n"
            continue
        }
        margin = 99
        for (end = i; end <= count && (as_it_is(end) || (lines[end] == "" && as_it_is(end + 1))); ++end)
            if (match(lines[end], /[^ ]/) && RSTART < margin) margin = RSTART
        text = text indent "///\n" indent "/// @code" (lines[i] ~ /\/\/|[;{]$|;  / ? "{.cpp}" : "{.txt}") "\n"
        for (; i < end; ++i)
            text = text indent "/// " substr(lines[i], margin) "\n"
        text = text indent "/// @endcode\n"
        --i
    }
    return text
}

/^ *\/\/( |$)/ {
    indent = $0
    sub(/\/\/.*/, "", indent)
    text = $0
    sub(/^ *\/\/ ?/, "", text)
    lines[++count] = text
    next
}

count {
    of_the_file = !named || $0 ~ /^$|^UTIL_EXTERN_C_BEGIN/
    saved = comment(of_the_file ? indent "/// @file\n" : "")
    printf "%s", saved
    named = 1
    if (of_the_file) {
        print ""
        saved = ""
    }
    split("", lines)
    count = 0
    fresh = 1  # the first declaration has its comment already
}

/^ *$|^#(include|endif)|^ *(public|protected|private):|^UTIL_EXTERN_C|^} *\/\// { saved = "" }

{
    if ($0 !~ /^#/) trailing = sub(/  \/\/ /, "  ///< ")
    if (saved != "" && between && !fresh && !trailing && $0 !~ /^#(if|else)/) printf "%s", saved
    fresh = 0
    print
    code = $0
    sub(/ *\/\/.*/, "", code)
    if (code ~ /^ *(typedef |template.*)?(class|struct|enum|namespace) .*{$/) saved = ""
    between = code ~ /(;|}|^ *|^#.*[^\\])$/
    opened += gsub(/[({]/, "", code) - gsub(/[)}]/, "", code)
    if (saved == "" || /^#/) opened = 0
    if (opened) between = 0
}
