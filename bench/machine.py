#!/usr/bin/env python3
"""Makes the machine of one measurement: listing, table and firmware directory.

Usage: machine.py DIRECTORY GROWS SIZE
GROWS is what SIZE counts: ports, images, lines (of the table) or bytes (of the listing). What does not grow is that of
a machine of 8 ports. Two ports are a board; every port is due a download. Prints the number of boards.
"""
import struct
import sys
from pathlib import Path

PORTS = 8
PORTS_OF_A_BOARD = 2
# Model, device ID, image family, magic number and signature of its images.
MODELS = [("QVa5102", 0xE300, 64, 0xFEAA0003, 0xF70C), ("QVa6102", 0xF400, 65, 0xFEAA0005, 0xF7A4),
          ("QVa7102", 0xF500, 66, 0xFEAA0020, 0xF7A5), ("QVa7104S", 0xF600, 67, 0xFEAA0040, 0xF7A6)]
OTHER_MODELS = ["QVa5100", "QVa5104", "QVa5200", "QVa6100", "QVa6204", "QVa7100", "QVa7104"]
PADDING = "Note: nothing that the program looks for stands in this line\n"


def block(number, padding):
    board = number // PORTS_OF_A_BOARD
    model, device, *_ = MODELS[board % len(MODELS)]
    return (f"HBA: {number + 1}\n{padding}"
            f"Port WWN: 10:00:aa:bb:{number >> 16 & 255:02x}:{number >> 8 & 255:02x}:{number & 255:02x}:01\n"
            f"PCI Bus Number: {board % 256:X}\nPCI Dev Number: 0\nPCI Fun Number: {number % PORTS_OF_A_BOARD}\n"
            f"Model: {model}-M2\nDevice ID: {device:X}\nVendor ID: 1234\nSub Device ID: E311\nSub Vendor ID: 1234\n"
            f"Multi Channel: 0\nSerial Number: ab{board:08d}\nVPD Model: 1\nRevID: 1A\nSFJ: 1\nChange Status: 0\n"
            f"CSF: 0\nFlash Part: FP01\nFW Version: 14.0.100.5\nBoot Version: 14.0.100.5\nBoot Enabled: 1\n\n")


def listing(ports, size):
    """The padding is at the start of each block, so that each search for a key has to pass it."""
    plain = sum(len(block(number, "")) for number in range(ports))
    lines = max(0, size - plain) // (ports * len(PADDING))
    return "".join(block(number, lines * PADDING) for number in range(ports))


def image(model, version):
    _, _, _, magic, signature = model
    return (struct.pack(">III", 0, magic, signature << 16) + version.encode()).ljust(512, b"\0")


def images(count):
    """Families and versions in an order that is not that of the names."""
    made = {}
    for i in range(count):
        j = i * 7919 % count
        model = MODELS[j % len(MODELS)]
        made[f"i{i:05d}-{model[2]}.grp"] = image(model, f"14.4.{j}.14")
    return made


def table(count):
    """The lines that the ports need are the last ones."""
    needed = [f"{model[0]}   update-{model[2]}.grp\n" for model in MODELS]
    others = [f"{OTHER_MODELS[i % len(OTHER_MODELS)]}   update-{i:05d}.grp\n" for i in range(count - len(needed))]
    return "".join(others + needed)


def main():
    path, grows, size = Path(sys.argv[1]), sys.argv[2], int(sys.argv[3])
    ports = size if grows == "ports" else PORTS
    for directory in ("firmware", "temp"):
        (path / directory).mkdir(parents=True)
    (path / "listing.txt").write_text(listing(ports, size if grows == "bytes" else 0))
    (path / "fwmatrix.txt").write_text(table(size if grows == "lines" else len(MODELS)))
    files = {f"update-{model[2]}.grp": image(model, "14.4.473.14") for model in MODELS}
    if grows == "images":
        files = images(size)
    for name, content in files.items():
        (path / "firmware" / name).write_bytes(content)
    print((ports + PORTS_OF_A_BOARD - 1) // PORTS_OF_A_BOARD)


main()
