"""How gdb shows the library's types. In gdb: source util_gdb.py

    (gdb) print name
    $1 = "Data01"
    (gdb) print file
    $2 = XrFile "C:\\agent\\state.rec" open, descriptor 3
    (gdb) print *directory.getDirectoryList(false, false)
    $3 = 2 elements = {"a" directory, "b" 5 bytes}

For programs built by GCC or Clang with debug information. Bytes that are no UTF-8 come as \\xNN.
"""

import gdb
import gdb.printing

MOST_BYTES = 200


def text(value):
    """A std::string in quotes, NULs included, cut at MOST_BYTES."""
    size = int(value["_M_string_length"])
    start = int(value["_M_dataplus"]["_M_p"])
    shown = min(size, MOST_BYTES)
    stored = bytes(gdb.selected_inferior().read_memory(start, shown)) if shown else b""
    quoted = stored.decode("utf-8", "backslashreplace")
    quoted = quoted.replace('"', '\\"').replace("\n", "\\n").replace("\r", "\\r").replace("\0", "\\0")
    return '"' + quoted + ('"...' if shown < size else '"')


class StringPrinter:
    """extstl::ExtString and String: the stored text."""

    def __init__(self, value):
        self.value = value

    def to_string(self):
        return text(self.value["m_text"])


class EntryPrinter(StringPrinter):
    """XrDirectoryEntry: the name, and what its status says."""

    def to_string(self):
        if int(self.value["m_mode"]) & 0x4000:
            return super().to_string() + " directory"
        return "%s %d bytes" % (super().to_string(), int(self.value["m_size"]))


class FilePrinter:
    """XrFile: name and state, with the code of a recorded failure."""

    def __init__(self, value):
        self.value = value

    def to_string(self):
        state = "open" if self.value["m_is_open"] else "not open"
        shown = "XrFile %s %s, descriptor %d" % (text(self.value["m_name"]), state, int(self.value["m_fd"]))
        if self.value["m_error"]:
            shown += ", error %d" % int(self.value["m_error_code"])
        return shown


class ListingPrinter:
    """extstl::ExtPtrSortedVector: what its pointers point to."""

    def __init__(self, value):
        self.first = value["m_elements"]["_M_impl"]["_M_start"]
        self.count = int(value["m_elements"]["_M_impl"]["_M_finish"] - self.first)

    def to_string(self):
        return "%d element%s" % (self.count, "" if self.count == 1 else "s")

    def children(self):
        for index in range(self.count):
            yield "[%d]" % index, self.first[index].dereference()

    def display_hint(self):
        return "array"


class UnsignedPrinter:
    """ksl_uint64_c: one number."""

    def __init__(self, value):
        self.value = value

    def to_string(self):
        return str((int(self.value["high_"]) << 32) + int(self.value["low_"]))


def register(objfile=None):
    printers = gdb.printing.RegexpCollectionPrettyPrinter("util")
    for pattern, printer in (
        ("^(String|extstl::ExtString)$", StringPrinter),
        ("^XrDirectoryEntry$", EntryPrinter),
        ("^XrFile$", FilePrinter),
        ("^extstl::ExtPtrSortedVector<.*>$", ListingPrinter),
        ("^ksl_uint64_c$", UnsignedPrinter),
    ):
        printers.add_printer(printer.__name__, pattern, printer)
    gdb.printing.register_pretty_printer(objfile, printers, replace=True)


register()
