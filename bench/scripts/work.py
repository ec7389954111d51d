# The work of ScriptBench.cpp.
import random, time


class Card:
    def __init__(self, name, amount, kind):
        self.name = name
        self.values = {"Amount": amount, "Kind": kind}


CARDS = [Card("Card %d" % i, i % 100, "Kind %d" % (i % 10)) for i in range(100000)]


def loop():
    i, s, m = 0, 0, 1000 * 1000
    while i < 10000 * 1000:
        i = i + 1
        s = s + i
        if s > m:
            s = s - s


def walk():
    s = 0
    for c in CARDS:
        s = s + c.values["Amount"]


def compare():
    n = 0
    for c in CARDS:
        if c.values["Kind"] == "Kind 3":
            n = n + 1


def divide():
    n = 0
    for c in CARDS:
        n = n + c.values["Amount"] * 3 / 2


def put():
    n = 5
    for c in CARDS:
        c.values["Amount"] = n


def chain():
    # As s + a + b it would copy the text at each sign.
    s = ""
    for c in CARDS:
        s += c.name + ": " + str(c.values["Amount"]) + "\r\n"


def text():
    # With a counter of its own the text is copied at each turn.
    s = ""
    for _ in range(1000 * 1000):
        s += "abc"


def rand():
    i = 0
    while i < 1000 * 1000:
        i = i + 1
        x = int(random.random() * 6) + 1


WORKS = (
    ("loop", loop),
    ("walk", walk),
    ("compare", compare),
    ("divide", divide),
    ("put", put),
    ("chain", chain),
    ("text", text),
    ("random", rand),
)
for name, work in WORKS:
    best = float("inf")
    for _ in range(5):
        start = time.process_time()
        work()
        best = min(best, time.process_time() - start)
    print("%s %.4f" % (name, best))
