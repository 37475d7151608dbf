#!/usr/bin/env python3
"""Mends a book that chmcmd has compiled, and takes the times of its making out of it.

    settle_book.py BOOK

The layout: https://www.russotto.net/chm/chmformat.html
"""

import pathlib
import struct
import sys

TIME, DIRECTORY, CONTENT = 16, 0x48, 0x58  # where the header tells them
FIRST_CHUNK = 32  # in the directory's header
TIME_RECORD = 10  # of /#SYSTEM


def number(book, at):
    """An integer of seven bits a byte, and where it ends."""
    value = 0
    while True:
        value = value << 7 | book[at] & 0x7F
        at += 1
        if book[at - 1] < 0x80:
            return value, at


def main():
    file = pathlib.Path(sys.argv[1])
    book = bytearray(file.read_bytes())
    book[TIME:TIME + 4] = bytes(4)
    # The directory's first chunk is chunk 0. Where it has more than one, the compiler names the last, and a reader
    # that lists the files finds no others.
    chunk = struct.unpack_from("<Q", book, DIRECTORY)[0] + FIRST_CHUNK
    book[chunk:chunk + 4] = bytes(4)
    name = b"/#SYSTEM"
    section, at = number(book, book.index(bytes([len(name)]) + name) + 1 + len(name))
    assert section == 0, "/#SYSTEM is compressed"
    start, at = number(book, at)
    length, _ = number(book, at)
    start += struct.unpack_from("<Q", book, CONTENT)[0]
    record = start + 4
    while record < start + length:
        kind, size = struct.unpack_from("<HH", book, record)
        if kind == TIME_RECORD:
            book[record + 4:record + 4 + size] = bytes(size)
        record += 4 + size
    file.write_bytes(book)


if __name__ == "__main__":
    main()
