"""An interrupt that comes while a call works."""

import contextlib
import os
import signal
import threading

import pytest


@contextlib.contextmanager
def interrupted(after):
    """The block is to end by an interrupt that comes `after` seconds; also where the shell ignores interrupts, as it does for work in the background."""
    before = signal.signal(signal.SIGINT, signal.default_int_handler)
    timer = threading.Timer(after, os.kill, (os.getpid(), signal.SIGINT))
    timer.start()
    try:
        with pytest.raises(KeyboardInterrupt):
            yield
    finally:
        timer.join()
        signal.signal(signal.SIGINT, before)
