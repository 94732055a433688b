# gdb -nx -batch -x check_views.py --args HOST PRINTERS: checks how the pretty-printers display the host's values.
import gdb

EXPECTED = {
    "drop": "01;00;00;00 at 29.97",
    "pal": "01:02:31:09 at 25",
    "before": "23:00:00:01 at 25",
    "minus": "-00:00:00:01 at 25",
    "plus": "+1+01 at 24",
    "feet": "-1+01 at 24",
    "count": "-1234 at 23.976",
    "samples": "00:00:01:00450 at 48000",
    "fast": "00:00:01:1 at 192000",
    "milliseconds": "01:02:03.045 at 1000",
    "text": '"caf\u00e9 \U0001F600"',
    "lone": '"a\\\\ud83d"',
    "nothing": '""',
    "bytes": '"xxxx"',
    "name": '"caf\u00e9 \U0001F600"',
    "narrow": '"clip.mov"',
    "clip": "ObjectPtr, 2 owners = {object = {mFrames = 750}}",
    "noClip": "ObjectPtr, empty",
    "noReel": "InterfaceRef, empty",
    "guid": "{20974874-84a4-4245-9372-b24a16498199}",
    "time": "3.003 s",
    "invalid": "invalid",
    "rate": "59.94",
    "interned": '"caf\u00e9", 2 handles',
    "copied": '"take 2", 1 handle',
    "unnamed": "null",
    "*entry": '{03020100-0504-0706-0809-0a0b0c0d0e0f}, "reel", "media"',
    "idle": "a queue without threads",
    "many": "std::vector of length 2, capacity 2 = {01;00;00;00 at 29.97, 01:02:31:09 at 25}",
}

failures = []


def expect(name, wanted, shown):
    if wanted != shown:
        failures.append("%s shows as %s, not as %s" % (name, shown, wanted))


def shown(name):
    return gdb.parse_and_eval(name).format_string(max_elements=200)


def check_values():
    for name, wanted in EXPECTED.items():
        expect(name, wanted, shown(name))
    reel = shown("reel")
    expect("reel", "InterfaceRef to (anonymous namespace)::Reel, 1 owner = {object = ", reel.partition("{<")[0])
    expect("the object of reel", True, "mRefCount = 1}, mNumber = 12}" in reel)


def check_queue():
    expect("busy", '"Editor: Scan", paused, 2 threads, 3 waiting', shown("busy").partition(" = {[0]")[0])
    expect("the requests of busy", 3, shown("busy").count("(anonymous namespace)::Work"))
    expect("stopped", '"Editor: Scan", stopped, 1 thread, 0 waiting', shown("stopped"))


def check_classes():
    listed = gdb.execute("orl-classes", to_string=True)
    expect("orl-classes", EXPECTED["*entry"] + "\n1 class\n", listed)


def check_labels():
    """Checks that the printer displays each label as the text that the library formats."""
    count = 2000
    for i in range(count):
        code = shown("codes._M_impl._M_start[%d]" % i).partition(" at ")[0]
        expect("codes[%d]" % i, shown("labels._M_impl._M_start[%d]" % i), '"%s"' % code)


def main():
    for setting in ("pagination off", "confirm off", "host-charset UTF-8", "target-charset UTF-8",
                    "startup-with-shell off", "disable-randomization off"):
        gdb.execute("set " + setting)
    printers = gdb.execute("show args", to_string=True).split(chr(34))[1]
    gdb.execute("source " + printers)
    gdb.execute("break -qualified Stop", to_string=True)
    gdb.execute("run", to_string=True)
    gdb.execute("up", to_string=True)
    check_values()
    check_labels()
    check_queue()
    check_classes()


try:
    main()
except Exception as error:  # without the explicit quit, GDB would exit with 0
    failures.append("%s: %s" % (type(error).__name__, error))
for failure in failures:
    print(failure)
gdb.execute("quit %d" % (1 if failures else 0))
