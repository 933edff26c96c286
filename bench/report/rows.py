"""What the report shows in front: where each figure stands in what a benchmark prints."""
from dataclasses import dataclass

NUMBER = r"([\d.]+)"


@dataclass
class Row:
    title: str
    source: str  # bench/run-SOURCE
    unit: str
    ours: str  # a pattern whose group is the figure
    peers: dict[str, str]  # the same for what people would use instead
    floor: str | None = None  # the same for what cannot be done without


def bus(title, section):
    return Row(title, "bus", "us", rf"{section}.*?^tyx bus +{NUMBER}",
               {"sd-bus": rf"{section}.*?^sd-bus +{NUMBER}", "QtDBus": rf"{section}.*?^QtDBus +{NUMBER}"},
               rf"{section}.*?^floor +{NUMBER}")


def columns(title, source, row, first, names, floor=None):
    """A line of the tables that compare.py prints: the cells are "12.3 us (1.23x)" or "-"."""
    cell = r" +(?:-|{} us \([\d.]+x\))"
    everyone = [first, *names]

    def at(who):
        before = "".join(cell.format(r"[\d.]+") for _ in everyone[:everyone.index(who)])
        return rf"^{row}{before} +{NUMBER} us"
    return Row(title, source, "us", at(first), {who: at(who) for who in names if who not in ("floor", "scan")},
               at(floor) if floor else None)


def config(title, row, floor="floor"):
    return columns(title, "config", row, "ZConfig", ["floor", "GKeyFile", "QSettings", "KConfig"], floor)


def res(title, row, floor="floor"):
    return columns(title, "res", row, "Tyx", ["floor", "scan", "GResource", "QResource"], floor)


def editor(title, row, unit="us"):
    at = rf"^{row} +{{}}{NUMBER}"
    number = r"[\d.]+ +"
    return Row(title, "editor", unit, at.format(""), {"QPlainTextEdit": at.format(number),
                                                      "QTextEdit": at.format(number * 2)})


def packing(who):
    return rf"^{who} +{NUMBER} ms"


ROWS = [
    bus("message there and back, 64 bytes", "Round trip of 64 bytes"),
    bus("message to eight receivers, 64 bytes", "One to 8, 64 bytes"),
    config("configuration file of 1000 keys: open it, ask once", "oneQuestion/1000"),
    config("the same, ask for every key", "everyEntry/1000", None),
    config("the same, save", "save/1000"),
    Row("status table, a field", "status", "us", rf"^getter +{NUMBER}", {}, rf"^system calls of a getter +{NUMBER}"),
    res("resource file of 100: open it, find a name", "openAndFind words 100"),
    res("resource file of 10 000: open it, find a name", "openAndFind words 10000"),
    res("resource file of 10 000: open it, get data", "openAndAsk words 10000"),
    res("resource file of 200 000: open it, get data", "openAndAsk words 200000"),
    res("an open one of 10 000: get data", "ask words 10000", None),
    Row("packing 10 000 files", "res", "ms", packing("tyx pack create"),
        {"rcc": packing("rcc"), "glib-compile-resources": packing("glib-compile-resources")}, packing("floor")),
    Row("atlas of 1024 x 1024 in another process", "share", "us", rf"attach to the shared one +{NUMBER}",
        {"decoding it": rf"decode, and make the mask +{NUMBER}"}),
    Row("picture of 64 x 64 with its mask", "skin", "us", rf"getPixmap +{NUMBER}",
        {"the toolkit's mask": rf"copied by the toolkit +{NUMBER}"}, rf"copied by hand +{NUMBER}"),
    Row("hello: exec to first picture", "application", "ms", rf"^ +hello +{NUMBER} ms",
        {"QApplication, D-Bus, settings, translator": rf"^ +with D-Bus, settings, translator +{NUMBER} ms"},
        rf"first picture.*?^ +QApplication +{NUMBER} ms"),
    Row("registry lock", "lock", "us", rf"^ +the registry lock +{NUMBER} us",
        {"QSystemSemaphore": rf"QSystemSemaphore, made and dropped +{NUMBER}", "flock": rf"open, flock, close +{NUMBER}"},
        rf"the system calls of the registry lock +{NUMBER}"),
    editor("editor: key in 100 000 lines, painted", "the same, painted \\(us\\)"),
    editor("editor: setText() of 1 MB, rows known", "setText\\(\\) of 1 MB, rows known \\(us\\)"),
    editor("editor: resize of it, rows known", "resize of it from 240 to 200, rows known \\(us\\)"),
    editor("editor: undo one step", "undo one of 10 000 steps over 60 KB \\(us\\)"),
    editor("editor: memory of 1 MB of text", "memory of 1 MB of text \\(KiB\\)", "KiB"),
]
