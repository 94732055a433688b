"""GDB pretty-printers for the library's types.

    (gdb) source /where/installed/share/ORLFoundation/debug/orl_printers.py

A Timecode is shown as label and rate, a string as text, an owning pointer as reference count and object, a work queue
as its threads and waiting requests. The command orl-classes lists the classes of the ClassFactory. Nothing here calls a
function of the program, so everything also works on core files. "print /r" shows the members as they are.
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
MAX_REQUESTS = 1000  # limit for the requests shown, because a list may be garbage


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


def zero_terminated_length(text):
    """Returns the number of units before the first zero."""
    length = 0
    while length < MAX_UNITS and int((text + length).dereference()) != 0:
        length += 1
    return length


def const_string_printer(value):
    """Prints a ConstString or StdConstString, whose text is zero-terminated."""
    handle = members(value, "ORL::Internal::ConstStringHandle")
    text = handle["mText"]
    return Text(text, zero_terminated_length(text), text.type.target().sizeof)


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


def immutable_string_printer(value):
    pointer = value["mRepresentation"]
    if int(pointer) == 0:
        return Line("null")
    try:
        record = pointer.dereference()
        static, dynamic = record["mStaticText"], record["mDynamicText"]
        handles = int(record["mReferenceCount"])
    except gdb.error:
        return None  # the library has no debug symbols
    text = static if int(static) != 0 else dynamic["_M_dataplus"]["_M_p"]
    shown = Text(text, zero_terminated_length(text), 1).to_string()
    return Line('"%s", %d handle%s' % (shown, handles, "" if handles == 1 else "s"))


def class_entry_text(entry):
    """Returns the identifier and the two texts of a registered class."""
    names = ['"%s"' % Text(entry[name], zero_terminated_length(entry[name]), 1).to_string()
             for name in ("mFirstName", "mSecondName") if int(entry[name]) != 0]
    return ", ".join([guid_printer(entry["mClassID"]).to_string()] + names)


def class_entry_printer(value):
    return Line(class_entry_text(value))


def word_at(address):
    """Returns the 64-bit word at an address."""
    return int(gdb.Value(address).cast(gdb.lookup_type("unsigned long").pointer()).dereference())


def pointer_in(value):
    """Returns the address in a std::atomic pointer, whose bytes are those of the pointer."""
    return word_at(int(value.address))


def class_of(address):
    """Returns the class of the object at an address, by the symbol of its vtable."""
    symbol = gdb.execute("info symbol %d" % word_at(address), to_string=True)
    match = re.match(r"vtable for (.*) \+ \d+ in section", symbol)
    return match[1] if match else "a request"


class Queue:
    """Prints a ThreadedWorkQueue: its name, its threads, and the requests that no thread has started."""

    def __init__(self, core, threads):
        channel = core["mChannel"]
        self.name = Text(core["mName"]["_M_dataplus"]["_M_p"], int(core["mName"]["_M_string_length"]), 1).to_string()
        self.threads = threads
        self.is_paused = pointer_in(channel["mPaused"]) & 0xFFFFFFFF != 0
        self.is_closed = bool(channel["mInbox"]["mIsClosed"])
        self.requests = list(self.waiting(channel["mOutbox"])) + list(self.waiting(channel["mInbox"]))

    @staticmethod
    def waiting(side):
        node_type = gdb.lookup_type("tvxcore::threads::(anonymous namespace)::FunctionNode").pointer()
        node = pointer_in(side["mFirst"])
        for _ in range(MAX_REQUESTS):
            if node == 0:
                return
            function = gdb.Value(node).cast(node_type).dereference()["mFunction"]
            yield class_of(pointer_in(function["functor"]))
            node = word_at(node)  # mNext

    def to_string(self):
        state = "stopped, " if self.is_closed else "paused, " if self.is_paused else ""
        return '"%s", %s%d thread%s, %d waiting' % (self.name, state, self.threads, "" if self.threads == 1 else "s",
                                                    len(self.requests))

    def children(self):
        for number, request in enumerate(self.requests):
            yield "[%d]" % number, request


def work_queue_printer(value):
    implementation = value["mImpl"]
    try:
        executor = implementation.dereference()["mExecutor"]["px"] if int(implementation) else None
        if executor is None or int(executor) == 0:
            return Line("a queue without threads")
        executor = executor.cast(gdb.lookup_type("tvxcore::threads::ThreadedExecutor").pointer()).dereference()
        return Queue(executor["mCore"]["_M_ptr"].dereference(), int(executor["mThreadCount"]))
    except gdb.error:
        return None  # the libraries have no debug symbols


def nodes_below(node):
    """Yields the addresses of the values in a red-black tree of libstdc++, in order. A node is a colour and the pointers
    to its parent, its left and its right node, 8 bytes each; its value follows."""
    if node != 0:
        yield from nodes_below(word_at(node + 16))
        yield node + 32
        yield from nodes_below(word_at(node + 24))


class OrlClasses(gdb.Command):
    """Lists the classes that are registered in the ClassFactory, with their two texts."""

    MAP = "ORL::(anonymous namespace)::Classes()::classes"

    def __init__(self):
        super().__init__("orl-classes", gdb.COMMAND_DATA)

    def invoke(self, _argument, _from_terminal):
        try:
            classes = int(gdb.parse_and_eval("(unsigned long) &'%s'" % self.MAP))
            entry = gdb.lookup_type("ORL::ClassMapEntry").pointer()
        except gdb.error as error:
            raise gdb.GdbError("orl-classes needs the debug symbols of ORLFoundation: %s" % error)
        found = [gdb.Value(address + 16).cast(entry).dereference() for address in nodes_below(word_at(classes + 16))]
        for item in found:
            gdb.write(class_entry_text(item) + "\n")
        gdb.write("%d class%s\n" % (len(found), "" if len(found) == 1 else "es"))


PRINTERS = [(re.compile(pattern), printer) for pattern, printer in [
    (r"^std::(__cxx11::)?basic_string<unsigned (short|char),", string_printer),
    (r"^ORL::(Std)?ConstString$", const_string_printer),
    (r"^ORL::ObjectPtr<.*>$", object_ptr_printer),
    (r"^ORL::InterfaceRef<.*>$", interface_ref_printer),
    (r"^ORL::Timecode$", timecode_printer),
    (r"^ORL::ImmutableString$", immutable_string_printer),
    (r"^ORL::ClassMapEntry$", class_entry_printer),
    (r"^ORL::ThreadedWorkQueue$", work_queue_printer),
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


if orl_printer.__name__ not in [getattr(printer, "__name__", None) for printer in gdb.pretty_printers]:
    gdb.pretty_printers.insert(0, orl_printer)
    put_first()
    gdb.events.new_objfile.connect(put_first)
    gdb.events.stop.connect(put_first)
    OrlClasses()
