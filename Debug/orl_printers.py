"""GDB pretty-printers for the library's types.

    (gdb) source /where/installed/share/ORLFoundation/debug/orl_printers.py

A Timecode is shown as label and rate, a string as text, an owning pointer as reference count and object. The printers
call no function of the program, so they also work on core files. "print /r" shows the members as they are.
"""
import re

import gdb

TICKS_PER_SECOND = 705600000
NTSC = 23543520     # ticks of one frame at 30000/1001
NTSC_HD = 11771760  # at 60000/1001
FILM_NTSC = 29429400  # at 24000/1001
INVALID_TIME = -(1 << 63)

FRAMES, FEET_16MM, FEET_35MM, MILLISECONDS = 109, 111, 112, 201
DROP_FRAME = (102, 106)
MAX_UNITS = 1 << 16  # limit for the units read, because a length may be garbage


def members(value, base):
    """Returns the value cast to the base class with that name, to access members of the base."""
    for field in value.type.strip_typedefs().fields():
        if field.is_base_class and field.name.startswith(base):
            return value[field]
    return value


def quotient(number, divisor):
    """Toward zero."""
    count = abs(number) // abs(divisor)
    return count if (number < 0) == (divisor < 0) else -count


def rate_text(ticks):
    """Returns the frame rate in its usual short form."""
    spoken = {NTSC: "29.97", NTSC_HD: "59.94", FILM_NTSC: "23.976", 0: "0"}
    if ticks in spoken:
        return spoken[ticks]
    rate = TICKS_PER_SECOND / ticks
    whole = round(rate)
    return str(whole) if whole and round(TICKS_PER_SECOND / whole) == ticks else "%.6g" % rate


def time_text(ticks):
    """Returns the seconds with up to six decimals."""
    if ticks == INVALID_TIME:
        return "invalid"
    micros = (abs(ticks) * 2000000 + TICKS_PER_SECOND) // (2 * TICKS_PER_SECOND)
    text = "%d.%06d" % divmod(micros, 1000000)
    return ("-" if ticks < 0 else "") + text.rstrip("0").rstrip(".") + " s"


class Text:
    """Prints a string in quotes; invalid UTF-16 or UTF-8 appears as escapes."""

    def __init__(self, pointer, length, unit_size):
        self.pointer, self.length, self.unit_size = pointer, length, unit_size

    def to_string(self):
        count = min(self.length, MAX_UNITS)
        if count == 0:
            return ""
        data = gdb.selected_inferior().read_memory(int(self.pointer), count * self.unit_size).tobytes()
        if self.unit_size == 1:
            return data.decode("utf-8", "backslashreplace")
        text = data.decode("utf-16-le", "surrogatepass")
        return re.sub("[\ud800-\udfff]", lambda lone: "\\u%04x" % ord(lone.group()), text)

    def display_hint(self):
        return "string"


def string_printer(value):
    """Prints a UTF16String or UTF8String."""
    unit = value.type.strip_typedefs().template_argument(0)
    return Text(value["_M_dataplus"]["_M_p"], int(value["_M_string_length"]), unit.sizeof)


def const_string_printer(value):
    """Prints a ConstString or StdConstString, whose text is zero-terminated."""
    handle = members(value, "ORL::Internal::ConstStringHandle")
    text = handle["mText"]
    length = 0
    while length < MAX_UNITS and int((text + length).dereference()) != 0:
        length += 1
    return Text(text, length, text.type.target().sizeof)


class Line:
    """Prints a value on one line."""

    def __init__(self, text):
        self.text = text

    def to_string(self):
        return self.text


class Owner:
    """Prints an owning pointer: the reference count and the object."""

    def __init__(self, title, pointer, count):
        self.title, self.pointer, self.count = title, pointer, count

    def to_string(self):
        if int(self.pointer) == 0:
            return self.title + ", empty"
        return "%s, %d owner%s" % (self.title, self.count, "" if self.count == 1 else "s")

    def children(self):
        if int(self.pointer) != 0:
            yield "object", self.pointer.dereference()


def object_ptr_printer(value):
    pointer = value["mPtr"]
    return Owner("ObjectPtr", pointer, int(value["mCounter"].dereference()) if int(pointer) else 0)


def reference_count(value):
    """Returns the reference count of an object, searched in all its base classes."""
    for field in value.type.fields():
        if field.name == "mRefCount":
            return int(value[field])
        if field.is_base_class:
            count = reference_count(value[field])
            if count is not None:
                return count
    return None


class InterfaceOwner(Owner):
    """Prints an interface reference; omits the reference count if no count is found in the object."""

    def to_string(self):
        if int(self.pointer) == 0 or self.count is not None:
            return Owner.to_string(self)
        return self.title


def interface_ref_printer(value):
    pointer = value["mIPtr"]
    if int(pointer) == 0:
        return Owner("InterfaceRef", pointer, 0)
    actual = pointer.cast(pointer.dynamic_type)
    target = actual.dereference()
    return InterfaceOwner("InterfaceRef to %s" % target.type.name, actual, reference_count(target))


def guid_printer(value):
    words = value["mWords"]
    data = int(words[0]).to_bytes(8, "little") + int(words[1]).to_bytes(8, "little")
    first = (data[3::-1], data[5:3:-1], data[7:5:-1], data[8:10], data[10:])
    return Line("{" + "-".join(part.hex() for part in first) + "}")


def time_printer(value):
    return Line(time_text(int(value["mTicks"])))


def rate_printer(value):
    return Line(rate_text(int(value["mTicksPerFrame"])))


class Record:
    """Returns the members of a Timecode's record that determine its label."""

    def __init__(self, record):
        self.ticks = int(record["mTime"]["mTicks"])
        self.rate = int(record["mFrameRate"]["mTicksPerFrame"])
        self.display = int(record["mTimeDisplay"])
        self.fields = [int(record[name]) for name in ("mHours", "mMinutes", "mSeconds", "mFrames")]
        self.digits = int(record["mFrameDigits"])
        style = record["mStyle"]
        self.shows_hours = int(style["mHoursMode"]) == 1
        self.shows_sign = bool(style["mShowSign"])
        self.zeros = not bool(style["mNoLeadingZeros"])

    def label(self):
        sign = ""
        brings_minus = self.display in (FRAMES, FEET_16MM, FEET_35MM)
        if self.shows_sign and self.ticks > 0:
            sign = "+"
        elif self.shows_sign and self.ticks < 0 and not brings_minus:
            sign = "-"
        if not brings_minus:
            return sign + self.clock()
        count = quotient(self.ticks, self.rate) if self.rate else 0
        return sign + (str(count) if self.display == FRAMES else self.feet(count))

    def feet(self, count):
        per_foot = 16 if self.display == FEET_35MM else 40
        return "%s%d+%02d" % (("-" if self.ticks < 0 else "",) + divmod(abs(count), per_foot))

    def clock(self):
        hours, minutes, seconds, frames = self.fields
        hours %= 24
        if not self.shows_sign and self.ticks < 0:
            hours = 23 - hours
        shown = ([hours] if self.shows_hours else []) + [minutes, seconds]
        pattern = "%02d" if self.zeros else "%d"
        separator = ";" if self.display in DROP_FRAME else ":"
        width = self.digits + 1 if self.zeros and 0 < self.digits < 5 else 1
        last = "." if self.display == MILLISECONDS else separator
        return separator.join(pattern % field for field in shown) + last + "%0*d" % (width, frames)


def timecode_printer(value):
    try:
        record_type = gdb.lookup_type("ORL::Timecode::PrivateImpl")
    except gdb.error:
        return None  # the library has no debug symbols
    pointer = value["mPrivateImpl"].address.cast(record_type.pointer().pointer()).dereference()
    if int(pointer) == 0:
        return Line("no record yet")
    record = Record(pointer.dereference())
    return Line("%s at %s" % (record.label(), rate_text(record.rate)))


PRINTERS = [(re.compile(pattern), printer) for pattern, printer in [
    (r"^std::(__cxx11::)?basic_string<unsigned (short|char),", string_printer),
    (r"^ORL::(Std)?ConstString$", const_string_printer),
    (r"^ORL::ObjectPtr<.*>$", object_ptr_printer),
    (r"^ORL::InterfaceRef<.*>$", interface_ref_printer),
    (r"^ORL::Timecode$", timecode_printer),
    (r"^tvxcore::utility::Guid$", guid_printer),
    (r"^tvxmediatypes::TickTime$", time_printer),
    (r"^tvxmediatypes::FrameRate$", rate_printer),
]]


def orl_printer(value):
    """Returns the printer for a value of the library's types, else None."""
    name = value.type.unqualified().strip_typedefs().name
    if name is None:
        return None
    for pattern, printer in PRINTERS:
        if pattern.match(name):
            return printer(value)
    return None


def put_first(*_):
    """GDB tries the printers of object files first, and the standard library's would show 16-bit strings as numbers."""
    for objfile in gdb.objfiles():
        if objfile.pretty_printers and objfile.pretty_printers[0] is not orl_printer:
            objfile.pretty_printers = [orl_printer] + [p for p in objfile.pretty_printers if p is not orl_printer]


gdb.pretty_printers.insert(0, orl_printer)
put_first()
gdb.events.new_objfile.connect(put_first)
gdb.events.stop.connect(put_first)
