#!/usr/bin/python3
"""A file that does not fit into the memory, among others that do.

    huge_file_test.py PROGRAM
"""

import os
import resource

import console_case
from console_case import TEXT

HUGE = 4 << 30  # bytes
MEMORY = 1 << 30


def limit_memory():
    resource.setrlimit(resource.RLIMIT_AS, (MEMORY, MEMORY))


class HugeFileTest(console_case.ConsoleCase):
    def test_a_file_beyond_the_memory_fails_by_itself(self):
        self.write(b"a.txt", TEXT.encode("cp932"))
        self.write(b"z.txt", TEXT.encode("cp932"))
        with open(self.path(b"huge.txt"), "wb") as file:
            file.truncate(HUGE)  # a hole: it takes no room on the disk
        run = self.convert(".", preexec_fn=limit_memory)
        self.assert_run(run, 1, b"2 converted, 1 failed")
        self.assertIn(self.path(b"huge.txt") + b" was not converted. It cannot be read: Cannot allocate memory.",
                      run.stderr)
        self.assertEqual(sorted(os.listdir(self.folder)), [b"a.txt", b"huge.txt", b"z.txt"])
        self.assertEqual(os.stat(self.path(b"huge.txt")).st_size, HUGE)
        self.assertEqual(self.read(b"z.txt"), TEXT.encode())


console_case.main()
