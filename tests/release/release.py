"""tools/release.sh: the same archives from two clones, and the programs tried from the unpacked archives."""
import hashlib
import json
import os
import shutil
import subprocess
import tempfile
import unittest
from pathlib import Path

TOP = Path(__file__).resolve().parents[2]
REHEARSAL = "rehearsal only - simulated adapters"
IMAGES = {"a5104-14.4.473.14.grp": 64, "a6102-14.4.473.14.grp": 65, "a7100-14.4.473.14.grp": 66}
# What the caller's environment may hold without a trace in the archives.
OTHER_CALLER = {"TZ": "Asia/Tokyo", "LANG": "de_DE.UTF-8", "LC_ALL": "C.UTF-8", "CXXFLAGS": "-O0", "ZIPOPT": "-0",
                "CMAKE_CXX_COMPILER_LAUNCHER": "", "USER": "somebody"}


def run(*command, **keys):
    return subprocess.run(list(map(str, command)), stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, stderr=subprocess.PIPE,
                          timeout=1800, **keys)


def output_of(*command, **keys):
    """The output of a command that must succeed."""
    done = run(*command, **keys)
    if done.returncode != 0:
        raise AssertionError(f"{command} ended with {done.returncode}:\n{done.stdout.decode()}{done.stderr.decode()}")
    return done.stdout.decode()


def sha256(file):
    return hashlib.sha256(file.read_bytes()).hexdigest()


class Release(unittest.TestCase):
    maxDiff = None

    @classmethod
    def setUpClass(cls):
        cls.place = Path(tempfile.mkdtemp(prefix="tarnlift-release-"))
        cls.addClassCleanup(shutil.rmtree, cls.place)
        cls.make_certificate()
        changes = output_of("git", "stash", "create", cwd=TOP)  # a commit of what is not committed yet, if there is any
        cls.commit = (changes or output_of("git", "rev-parse", "HEAD", cwd=TOP)).strip()
        cls.first = cls.clone("first")
        cls.second = cls.clone("a directory with a longer name/second")
        signing = ["--sign", "-certs", cls.place / "certificate.pem", "-key", cls.place / "key.pem"]
        output_of("tools/release.sh", *signing, cwd=cls.first, umask=0o077)
        output_of("tools/release.sh", cwd=cls.second, umask=0o002, env={**os.environ, **OTHER_CALLER})
        cls.archives = cls.first / "build/release"
        cls.windows = cls.unpack("python3", "-m", "zipfile", "-e", next(cls.archives.glob("*-windows-x64.zip")), ".")
        cls.signed = cls.unpack("python3", "-m", "zipfile", "-e", next(cls.archives.glob("*-signed.zip")), ".")
        cls.linux = cls.unpack("tar", "-xzf", next(cls.archives.glob("tarnfleet-*.tar.gz")))

    @classmethod
    def make_certificate(cls):
        output_of("openssl", "req", "-x509", "-newkey", "rsa:2048", "-nodes", "-days", "2", "-subj", "/CN=Tarnlift test",
                  "-addext", "extendedKeyUsage=codeSigning", "-addext", "keyUsage=digitalSignature",
                  "-keyout", cls.place / "key.pem", "-out", cls.place / "certificate.pem")

    @classmethod
    def clone(cls, name):
        path = cls.place / name
        output_of("git", "clone", "--quiet", "--shared", "--no-checkout", TOP, path)
        output_of("git", "checkout", "--quiet", "--detach", cls.commit, cwd=path)
        return path

    @classmethod
    def unpack(cls, *command):
        """The directory that an archive holds."""
        target = Path(tempfile.mkdtemp(dir=cls.place))
        output_of(*command, cwd=target)
        return next(target.iterdir())

    def programs(self, directory):
        return {str(file.relative_to(directory)): file for file in directory.rglob("*.exe")}

    def wine(self, *command, cwd):
        done = run(self.first / "tools/wine.sh", *command, cwd=cwd)  # Wine's directories in the clone
        return done.returncode, done.stdout.decode()

    def test_two_clones_give_the_same_bytes(self):
        unsigned = [file for file in self.archives.iterdir() if file.is_file() and "-signed" not in file.name]
        names = [file.name for file in unsigned if file.suffix in (".zip", ".gz", ".json")]
        self.assertEqual(len(names), 4, names)
        for name in names:
            with self.subTest(name):
                self.assertEqual(sha256(self.archives / name), sha256(self.second / "build/release" / name))
        output_of("sha256sum", "--check", "--strict", "SHA256SUMS", cwd=self.archives)

    def test_a_changed_tree_is_refused(self):
        (self.second / "README.md").write_text("changed")
        done = run("tools/release.sh", cwd=self.second)
        self.assertEqual(done.returncode, 1)
        self.assertIn(" M README.md", done.stderr.decode())

    def test_the_bill_of_materials_names_what_is_linked(self):
        wanted = {self.windows: ["libstdc++.a", "libgcc.a", "libmingw32.a", "libpthread.a"],
                  self.linux: ["libstdc++.a", "libgcc.a", "libc.a", "libexpat.a"]}
        for directory, libraries in wanted.items():
            document = json.loads((self.archives / (directory.name + ".cdx.json")).read_text())
            components = document["components"]
            for library in libraries:
                self.assertTrue([c for c in components if f" {library}" in c.get("description", "")], library)
            for component in components:
                if component["type"] == "library":
                    installed = output_of("dpkg-query", "-W", "-f", "${Version}", component["name"])
                    self.assertEqual(component["version"], installed, component["name"])
                    self.assertTrue((directory / "licenses" / (component["name"] + ".txt")).exists(), component["name"])
                else:
                    program = next(directory.rglob(component["name"]))
                    self.assertEqual(component["hashes"][0]["content"], sha256(program))

    def test_the_signed_programs_verify_and_are_the_released_ones(self):
        self.assertEqual(self.programs(self.signed).keys(), self.programs(self.windows).keys())
        for name, program in self.programs(self.signed).items():
            with self.subTest(name):
                output_of("osslsigncode", "verify", "-CAfile", self.place / "certificate.pem", "-in", program)
                stripped = self.place / "stripped.exe"
                stripped.unlink(missing_ok=True)
                output_of("osslsigncode", "remove-signature", "-in", program, "-out", stripped)
                self.assertEqual(sha256(stripped), sha256(self.programs(self.windows)[name]))

    def test_the_windows_programs_run_from_the_archive(self):
        self.addCleanup(run, self.first / "tools/wine.sh", "--end")
        machine = self.place / "machine"
        (machine / "firmware").mkdir(parents=True)
        for program in self.programs(self.windows).values():
            shutil.copy(program, machine)
        shutil.copy(self.windows / REHEARSAL / "adapters.sample.txt", machine / "adapters.txt")
        shutil.copy(self.windows / "share/fwmatrix.sample.txt", machine / "fwmatrix.txt")
        for name, family in IMAGES.items():
            made = self.wine("mkgrp.exe", "--family", family, "--version", "14.4.473.14", "firmware/" + name, cwd=machine)
            self.assertEqual(made[0], 0, made)
        code, help_text = self.wine("tarnlift.exe", "/h", cwd=machine)
        self.assertEqual((code, "Velmar Firmware Update Utility" in help_text), (0, True), help_text)
        code, listed = self.wine("tarnlift.exe", "/q", cwd=machine)
        self.assertEqual((code, listed.count("\nHBA=QVa")), (0, 10), listed)
        code, preview = self.wine("tarnlift.exe", "/p", "/update", cwd=machine)
        self.assertEqual((code, preview.count("Status=Preview")), (0, 7), preview)
        (self.windows / "listings").mkdir()
        (self.windows / "listings/server1.txt").write_text(self.wine("winhbcfg.exe", "listattr", "/c", cwd=machine)[1])
        here = "Z:" + str(machine).replace("/", "\\")
        planned = self.wine("tarnfleet.exe", "plan", "listings", "-o", "plan", "--", "/update", f"/id={here}", f"/fmd={here}",
                            cwd=self.windows)
        self.assertEqual(planned[0], 0, planned)
        status = self.wine("tarnfleet.exe", "status", "plan", cwd=self.windows)[1]
        self.assertRegex(status, "server1 +would-update +0 +7 would-update")

    def test_the_linux_programs_need_nothing_but_the_archive(self):
        alone = 'mount --rbind /dev "$0/dev" && exec chroot "$0" "$@"'

        def run_alone(*command):
            """Runs a program where the archive is the whole file system, but for devices and processes."""
            return output_of("unshare", "--map-root-user", "--mount", "--pid", "--fork", f"--mount-proc={self.linux}/proc",
                             "sh", "-c", alone, self.linux, *command, env={"PATH": "/usr/sbin:/usr/bin"})

        for directory in "dev", "proc", "tmp", "listings", "firmware":
            (self.linux / directory).mkdir()
        shutil.copy(self.linux / REHEARSAL / "adapters.sample.txt", self.linux / REHEARSAL / "adapters.txt")
        shutil.copy(self.linux / "share/fwmatrix.sample.txt", self.linux / "fwmatrix.txt")
        for name, family in IMAGES.items():
            run_alone(f"/{REHEARSAL}/mkgrp", "--family", family, "--version", "14.4.473.14", "/firmware/" + name)
        (self.linux / "listings/server1.txt").write_text(run_alone(f"/{REHEARSAL}/winhbcfg.exe", "listattr", "/c"))
        run_alone("/tarnfleet", "plan", "/listings", "-o", "/plan", "--", "/update", "/id=/", "/fmd=/")
        self.assertRegex(run_alone("/tarnfleet", "status", "/plan"), "server1 +would-update +0 +7 would-update")

    def test_text_has_the_line_ends_of_its_system(self):
        for name in "README.txt", "docs/operator-guide.md", "share/fwmatrix.sample.txt":
            on_windows, on_linux = (self.windows / name).read_bytes(), (self.linux / name).read_bytes()
            self.assertEqual(on_windows.count(b"\r\n"), on_windows.count(b"\n"), name)
            self.assertNotIn(b"\r", on_linux, name)


unittest.main()
