# The work of ScriptBench.cpp.
import random, time


class Card:
    def __init__(self, name, amount):
        self.name = name
        self.values = {"Amount": amount}


CARDS = [Card("Card %d" % i, i % 100) for i in range(100000)]


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


for name, work in (("loop", loop), ("walk", walk), ("text", text), ("random", rand)):
    best = float("inf")
    for _ in range(3):
        start = time.perf_counter()
        work()
        best = min(best, time.perf_counter() - start)
    print("%s %.4f" % (name, best))
