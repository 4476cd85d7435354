"""Input and children that nobody would send on purpose."""
import unittest

from machine import MachineTest, port

NO_ADAPTERS = "\ntarnlift.exe: Error - no supported Velmar HBAs found - Return Code=5\n\n\n"


class Hostile(MachineTest):
    def test_utilities_that_list_nothing(self):
        for utility in "", "exit 3\n", "kill -SEGV $$\n", "exec >&-\n", "echo no adapters\n", "printf '\\000HBA: 1'\n":
            with self.subTest(utility):
                machine = self.machine(utility=utility)
                self.assertEqual(machine.run("/q"), (5, NO_ADAPTERS))
                self.assertEqual(list((machine.path / "temp").iterdir()), [])

    def test_a_utility_that_is_missing_or_no_program(self):
        machine = self.machine()
        (machine.path / "winhbcfg.exe").write_text("text")
        self.assertEqual(machine.run("/q"), (5, NO_ADAPTERS))
        self.assertEqual(machine.stderr.count("\n"), 1)
        (machine.path / "winhbcfg.exe").unlink()
        self.assertEqual(machine.run("/q"), (5, NO_ADAPTERS))
        self.assertEqual(list((machine.path / "temp").iterdir()), [])

    def test_a_temp_directory_that_cannot_be_used(self):
        machine = self.machine(port())
        self.assertEqual(machine.run("/q", env={"TEMP": str(machine.path / "gone")}), (5, NO_ADAPTERS))
        self.assertEqual(machine.calls(), [])
        (machine.path / "blank dir").mkdir()
        self.assertEqual(machine.run("/q", env={"TEMP": str(machine.path / "blank dir")}), (5, NO_ADAPTERS))
        self.assertEqual(machine.calls(), ["listattr /c dir\\temp.txt"])

    def test_long_replies_are_read_as_far_as_they_fit(self):
        cases = [("NO Error" + "x" * 100000, 0), ("x" * 5000 + "NO Error\n", 0), ("x" * 5200 + "\nNO Error", 2),
                 ("x" * 251 + "NO Error\n", 0), ("\r\n" * 5000 + "NO Error\n", 0), ("a\0NO Error\n", 2)]
        for reply, code in cases:
            with self.subTest(reply[:20]):
                machine = self.machine(matrix="QVa5202 a.grp\n", images=[(64, "14.2.1.1", "a.grp")],
                                       utility='case $1 in listattr) cat ../list;; *) cat ../reply; exit 7;; esac\n')
                (machine.path / "list").write_text(port())
                (machine.path / "reply").write_bytes(reply.encode())
                self.assertEqual(machine.run("/update")[0], code)

    def test_a_large_listing_with_every_line_end(self):
        listing = "\n".join(port(n, serial=f"S{n}", bus=f"{n % 256:X}") for n in range(1, 5001))
        machine = self.machine(matrix="", utility="cat ../list\n")
        for line_end in "\n", "\r\n":
            (machine.path / "list").write_bytes(listing.replace("\n", line_end).encode())
            code, output = machine.run("/q")
            self.assertEqual((code, output.count("\nHBA=QVa5202, ")), (0, 5000))
            self.assertIn("WWN=10:00:00:00:00:00:00:1388, ", output)
            self.assertNotIn("\r", output)

    def test_a_matrix_of_ten_thousand_lines(self):
        lines = [f"QVx{n} f{n}.grp" for n in range(9998)] + ["\0QVa5202 b.grp", "QVa5202 a.grp" + " x" * 500]
        machine = self.machine(port(), matrix="\r\n".join(lines), images=[(64, "14.2.1.1", "a.grp")])
        self.assertEqual(machine.run("/update")[0], 0)

    def test_cut_listings_lose_no_port(self):
        listing = port(1) + "\n" + port(2, serial="S2")
        machine = self.machine(matrix="", utility="cat ../list\n")
        for length in range(4, len(listing), 37):
            (machine.path / "list").write_text(listing[:length])
            code, output = machine.run("/q")
            self.assertIn(code, (0, 2, 3))
            self.assertEqual(output.count("\nHBA="), 1 + (length >= len(port(1)) + 4), length)

    def test_a_command_line_that_is_too_long_is_not_run(self):
        machine = self.machine(port())
        long_temp = str(machine.path) + "/t" * 120
        long_id = "x/" * 109
        (machine.path / "fwmatrix.txt").write_text("QVa5202 a.grp\n")
        self.assertEqual(machine.run("/xv", "/q", "/v", f"/id={long_id}", env={"TEMP": long_temp})[0], 5)
        self.assertEqual(machine.calls(), [])


unittest.main()
