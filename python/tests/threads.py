"""Threads that get in each other's way."""

import threading
from typing import Callable


def refusal_of_two(work: Callable[[], object]) -> str:
    """What the call says that is refused, of two threads that make the same long one over and over."""
    refused: list[str] = []

    def run() -> None:
        for _ in range(20):
            try:
                work()
            except RuntimeError as error:
                refused.append(str(error))
                return

    threads = [threading.Thread(target=run) for _ in range(2)]
    for thread in threads:
        thread.start()
    for thread in threads:
        thread.join()
    return refused[0] if refused else ""
