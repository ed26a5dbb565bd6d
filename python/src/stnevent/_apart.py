"""Work in a process of its own, so that a file that ends the process ends nothing else."""

from __future__ import annotations

import multiprocessing
import os
import pickle
import signal
import subprocess
import sys
import threading
from collections.abc import Callable
from multiprocessing.connection import Connection
from typing import Any

_START = "from stnevent._apart import serve; serve({})"
_CHANNEL_ENDED = (EOFError, ConnectionError)


class ProcessEnded(Exception):
    """The process ended before its task was done."""


class _Process:
    """Another Python that does one task after the other, and ends when this one is gone."""

    def __init__(self) -> None:
        self._channel, theirs = multiprocessing.Pipe()
        environment = os.environ | {"PYTHONPATH": os.pathsep.join(sys.path)}
        with theirs:
            command = [sys.executable, "-c", _START.format(theirs.fileno())]
            self._process = subprocess.Popen(command, env=environment, stdin=subprocess.DEVNULL, pass_fds=[theirs.fileno()])

    def run(self, task: bytes) -> bytes:
        try:
            self._channel.send((sys.path, task))
            return self._channel.recv_bytes()
        except _CHANNEL_ENDED:
            self._channel.close()
            code = self._process.wait()
            how = f"by {signal.Signals(-code).name}" if code < 0 else f"with {code}"
            raise ProcessEnded(f"the process that read this file was ended {how}") from None


# multiprocessing's own pools are out of the question: Dask's workers are daemons, which it grants no children.
_of_thread = threading.local()


def run(task: bytes) -> bytes:
    """What a pickled callable gives, or the exception that it raises, pickled. It runs in a process that this thread keeps;
    if that ends, this is a ProcessEnded, and the next task finds a new one."""
    process = getattr(_of_thread, "process", None) or _Process()
    _of_thread.process = None
    try:
        done = process.run(task)
    except ProcessEnded as error:
        return pickle.dumps(error)
    _of_thread.process = process
    return done


def serve(channel_number: int) -> None:
    """Does the tasks that come in, as long as the other side is there."""
    signal.signal(signal.SIGINT, signal.SIG_IGN)  # whoever is interrupted is the other side, and closes the channel
    with Connection(channel_number) as channel:
        while True:
            try:
                sys.path[:], task = channel.recv()
                channel.send_bytes(_done(task))
            except _CHANNEL_ENDED:
                return


def _done(task: bytes) -> bytes:
    try:
        function: Callable[[], Any] = pickle.loads(task)
        return pickle.dumps(function())
    except Exception as error:
        return pickle.dumps(error)
