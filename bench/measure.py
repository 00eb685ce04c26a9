"""Measures commands: what compare.py and growth.py stand on."""
import os
import platform
import subprocess
import sys
import tempfile
import time
from dataclasses import dataclass
from datetime import datetime, timezone
from pathlib import Path

HERE = Path(__file__).resolve().parent


@dataclass
class Command:
    folder: Path      # in which it starts
    variables: dict   # its whole environment
    arguments: list   # the program first

    def run(self):
        """Its standard output."""
        return subprocess.run(self.arguments, cwd=self.folder, env=self.variables, check=False,
                              stdout=subprocess.PIPE, stderr=subprocess.DEVNULL).stdout


def cgi(folder, program, query_string, **variables):
    """A request as a web server hands it to a CGI program."""
    return Command(folder, {"REQUEST_METHOD": "GET", "QUERY_STRING": query_string,
                            "SCRIPT_NAME": "/search/" + Path(program).name,
                            "SERVER_PROTOCOL": "HTTP/1.1", "REMOTE_ADDR": "127.0.0.1",
                            **variables}, [str(program)])


def run_timed(command, stdin=None):
    """CPU and wall seconds and peak memory (kB) of a command, given `stdin`, and all that it starts."""
    with tempfile.NamedTemporaryFile("r") as figures:
        started = time.monotonic()
        done = subprocess.run(["/usr/bin/time", "-f", "%U %S %M", "-o", figures.name, *command],
                              input=(stdin or "").encode(), stdout=subprocess.DEVNULL,
                              stderr=subprocess.PIPE, check=False)
        wall = time.monotonic() - started
        last = figures.read().splitlines()[-1].split()
    if done.returncode != 0:
        sys.exit(f"{command[0]} failed:\n{done.stderr.decode('utf-8', 'replace')[-2000:]}")
    return float(last[0]) + float(last[1]), wall, int(last[2])


def read_anew(files):
    """Brings the files into the system's cache from the disk, whole and in order.

    Where they lie there as they were written, in smaller or larger pieces, a program that maps them
    takes up to a fifth less or more time for the same work.
    """
    for path in files:
        with open(path, "rb", buffering=0) as file:
            os.fsync(file.fileno())
            os.posix_fadvise(file.fileno(), 0, 0, os.POSIX_FADV_DONTNEED)
            while file.read(1 << 20):
                pass


def time_commands(binaries, runs, commands):
    """Times `commands`, name -> Command, by turns, and a program that does nothing as "empty".

    name -> {"ms", "lower_ms": median and lower quartile, "cpu_ms", "peak_kb", "faults"}.
    """
    lines = [f"empty\t/\t--\t{binaries / 'empty_program'}"]
    for name, command in commands.items():
        lines.append("\t".join([name, str(command.folder),
                                *(f"{key}={value}" for key, value in command.variables.items()),
                                "--", *command.arguments]))
    done = subprocess.run([binaries / "time_commands", str(runs)], input="\n".join(lines) + "\n",
                          text=True, check=True, stdout=subprocess.PIPE)
    figures = {}
    for line in done.stdout.splitlines():
        name, median, lower, cpu, peak, faults, _ = line.split("\t")
        figures[name] = {"ms": float(median) / 1000, "lower_ms": float(lower) / 1000,
                         "cpu_ms": float(cpu) / 1000, "peak_kb": int(peak),
                         "faults": int(faults)}
    return figures


def count_instructions(command):
    """Of one run, with callgrind; a figure that does not depend on what else the machine does."""
    with tempfile.NamedTemporaryFile("r") as out:
        subprocess.run(["valgrind", "--tool=callgrind", f"--callgrind-out-file={out.name}",
                        *command.arguments], cwd=command.folder, env=command.variables, check=True,
                       stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        for line in Path(out.name).read_text().splitlines():
            if line.startswith(("summary:", "totals:")):
                return int(line.split()[1])
    sys.exit("callgrind counted nothing")


def machine():
    model = "unknown processor"
    for line in Path("/proc/cpuinfo").read_text().splitlines():
        if line.startswith("model name"):
            model = line.split(":", 1)[1].strip()
            break
    release = ".".join(platform.release().split(".")[:2])
    return f"{model}, {os.cpu_count()} cores, Linux {release}"


def commit():
    done = subprocess.run(["git", "-C", str(HERE), "describe", "--always", "--dirty"], text=True,
                          stdout=subprocess.PIPE, stderr=subprocess.DEVNULL, check=False)
    return done.stdout.strip() or "unknown"


def circumstances():
    """When, of what, where and beside what something was measured."""
    return {"date": datetime.now(timezone.utc).strftime("%Y-%m-%d"), "commit": commit(),
            "machine": machine(), "load": f"{os.getloadavg()[0]:.1f}"}


def markdown_table(header, rows):
    lines = ["| " + " | ".join(header) + " |", "|" + " --- |" + " ---: |" * (len(header) - 1)]
    lines += ["| " + " | ".join(str(cell) for cell in row) + " |" for row in rows]
    return "\n".join(lines)
