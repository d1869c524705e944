"""What the Python script tests share: a check that prints its verdict and remembers failures,
and a poll with a time limit."""
import time

failures = []


def check(ok, what):
    print(('PASS: ' if ok else 'FAIL: ') + what, flush=True)
    if not ok:
        failures.append(what)


def until(condition, seconds, every=0.1):
    """Polls condition every `every` seconds for at most `seconds`; its last answer."""
    end = time.monotonic() + seconds
    while True:
        answer = condition()
        if answer or time.monotonic() > end:
            return answer
        time.sleep(every)
