#!/usr/bin/python3
"""Files that do not fit into the memory: converted in blocks, or failed by themselves.

    huge_file_test.py PROGRAM
"""

import os
import resource

import console_case
from console_case import TEXT

HUGE = 4 << 30  # bytes
LINES = 6_000_000


def limit_memory(size):
    return lambda: resource.setrlimit(resource.RLIMIT_AS, (size, size))


class HugeFileTest(console_case.ConsoleCase):
    def test_a_text_beyond_the_memory_is_converted(self):
        line = TEXT.splitlines()[0] + "\n"
        self.write(b"long.txt", line.encode("cp932") * LINES)
        size = os.stat(self.path(b"long.txt")).st_size
        run = self.convert(".", preexec_fn=limit_memory(size * 3 // 4))
        self.assert_run(run, 0, b"1 converted, 0 failed")
        self.assertTrue(self.read(b"long.txt") == line.encode() * LINES)

    def test_a_file_beyond_the_memory_fails_by_itself(self):
        self.write(b"a.txt", TEXT.encode("cp932"))
        self.write(b"z.txt", TEXT.encode("cp932"))
        with open(self.path(b"huge.txt"), "wb") as file:
            file.truncate(HUGE)  # a hole: it takes no room on the disk
        run = self.convert(".", preexec_fn=limit_memory(1 << 30))
        self.assert_run(run, 1, b"2 converted, 1 failed")
        self.assertIn(self.path(b"huge.txt") + b" was not converted. It cannot be read: Cannot allocate memory.",
                      run.stderr)
        self.assertEqual(sorted(os.listdir(self.folder)), [b"a.txt", b"huge.txt", b"z.txt"])
        self.assertEqual(os.stat(self.path(b"huge.txt")).st_size, HUGE)
        self.assertEqual(self.read(b"z.txt"), TEXT.encode())


console_case.main()
