"""Run by gdb where debugged.cpp stands still: prints what the display rules make of each object, and
what each expression of the natvis file evaluates to in it."""

import os
import re
import xml.etree.ElementTree

import gdb

OBJECTS = {
    "extstl::ExtString": "static_cast<extstl::ExtString&>(text)",
    "String": "text",
    "XrDirectoryEntry": "(*listing.m_elements._M_impl._M_start[0])",
    "XrFile": "missing",
    "extstl::ExtPtrSortedVector<*>": "listing",
    "ksl_uint64_c": "number",
}

for name in "text bytes file missing listing number".split():
    print("%s: %s" % (name, gdb.parse_and_eval(name).format_string()))

folder = "{http://schemas.microsoft.com/vstudio/debugger/natvis/2010}"
for rule in xml.etree.ElementTree.parse(os.environ["UTIL_NATVIS"]).iter(folder + "Type"):
    values = []
    for part in rule.iter():
        words = (part.text or "").strip()
        if part.tag == folder + "DisplayString":
            expressions = re.findall(r"\{(.+?)(?:,\w+)?\}", words)
        else:
            expressions = [words] if words else []
        if "Condition" in part.attrib:
            expressions.append(part.attrib["Condition"])
        for expression in expressions:
            member = OBJECTS[rule.attrib["Name"]] + r".\g<0>"
            value = gdb.parse_and_eval(re.sub(r"(?<![\w.])(m_|high_|low_)", member, expression))
            kind = value.type.strip_typedefs()
            if kind.code != gdb.TYPE_CODE_PTR:
                values.append(str(value))
            elif kind.target().sizeof == 1:
                values.append(value.string())
            else:  # the address would differ from run to run
                values.append(str(value.referenced_value().dereference()))
    print("natvis %s: %s" % (rule.attrib["Name"], ", ".join(values)))
