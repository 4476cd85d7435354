#!/usr/bin/env python3
"""Makes the report files of a fleet in the middle of a roll-out: bench/made_fleet.py DIRECTORY SERVERS

The same number of servers gives the same files. Most servers are updated; a few fail, lie, wait, or have no report.
"""
import random
import sys
from pathlib import Path

sys.path.insert(0, str(Path(__file__).resolve().parents[1] / "tests/tarnfleet"))
from report_files import (FAILED, MISSING_IMAGE, NOT_NEEDED, NO_LINE, REBOOT, SUCCEEDED, TWICE, Port, execution,
                          inventory, write_server)

IMAGE = "14.4.473.14"
OLD = ["14.0.169.25", "14.2.1.1", "14.2.589.3"]
MODELS = ["QVa5102", "QVa5202", "QVa5204-M8", "QVb6101", "QVc8802"]
BOARDS = [1, 2, 2, 2, 3, 3]  # of two ports: 21,000 ports on 5,000 servers
# How likely a board ends like this.
ENDINGS = {SUCCEEDED: 870, NOT_NEEDED: 80, REBOOT: 14, FAILED: 8, NO_LINE: 16, MISSING_IMAGE: 3, TWICE: 2}
LIARS = 0.005           # boards that report success and keep their version
UNQUERIED = 0.01        # servers without a query afterwards
NEWEST = 1_795_398_000  # the time of the last report, in seconds since 1970
HOURS = 3600


def board(chance, server, place):
    """The two ports of a board as the run reports them, and as the query does."""
    status = chance.choices(list(ENDINGS), list(ENDINGS.values()))[0]
    model, old = chance.choice(MODELS), IMAGE if status == NOT_NEEDED else chance.choice(OLD)
    image, file = ("NONE", "NONE") if status == NO_LINE else (IMAGE, f"{model.lower()}-{IMAGE}.grp")
    now = IMAGE if status == SUCCEEDED and chance.random() >= LIARS else old
    ports = []
    for port in range(2):
        wwn = f"10:00:00:90:fa:{server >> 8:02x}:{server & 255:02x}:{2 * place + port:02x}"
        ports.append(Port(wwn, status, model, old, image, file, f"{0x3B + 3 * place:X}:0.{port}"))
    return ports, [port.running(now) for port in ports]


def make_updated_server(directory, chance, number, name, time):
    boards = [board(chance, number, place) for place in range(chance.choice(BOARDS))]
    ports = [port for before, _ in boards for port in before]
    statuses = {port.status for port in ports}
    code = 3 if statuses & {FAILED, MISSING_IMAGE} else 1 if statuses <= {NOT_NEEDED, NO_LINE} else 0
    query = inventory(*[port for _, after in boards for port in after]) if chance.random() >= UNQUERIED else None
    run = execution(*ports, code=code, reboot=bool(statuses & {REBOOT, TWICE}))
    write_server(directory, name, run, query, code, time=time)


def make_server(directory, chance, number):
    site = chance.choice(["ams", "fra", "lon"])
    name = f"{chance.choice(['app', 'db', 'esx', 'mail', 'web'])}{number:04}.{site}.example"
    time = NEWEST - chance.randrange(5 * HOURS) - (chance.random() < 0.004) * 9 * 24 * HOURS
    kind = chance.random()
    if kind < 0.002:
        run = "tarnlift.exe: Error - insufficient privileges - Return Code=8\n"
        write_server(directory, name, run, code=8, time=time)
    elif kind < 0.004:
        write_server(directory, name, run="", time=time)
    elif kind < 0.008:
        run = "tarnlift.exe: Error - no supported Velmar HBAs found - Return Code=5\n"
        write_server(directory, name, run, code=5, time=time)
    else:
        make_updated_server(directory, chance, number, name, time)


def main():
    directory, count = Path(sys.argv[1]), int(sys.argv[2])
    directory.mkdir(parents=True, exist_ok=True)
    chance = random.Random(count)
    for number in range(1, count + 1):
        make_server(directory, chance, number)


if __name__ == "__main__":
    main()
