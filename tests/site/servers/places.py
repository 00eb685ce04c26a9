"""A folder with a site and its index, as it lies on a web server, for the time of a test."""

import os
import pathlib
import pwd
import re
import shutil
import subprocess
import tempfile

PROJECT = pathlib.Path(__file__).resolve().parents[3]
DEPLOY = PROJECT / "deploy"
BIN = pathlib.Path(os.environ.get("VELA_BIN", PROJECT / "build/release/bin"))
SITE = pathlib.Path(__file__).resolve().parent / "site"

# The user that servers and searches run as; None when the test itself is not root and can only
# run them as itself.
SERVER_USER = "www-data" if os.geteuid() == 0 else None


class Place:
    """A folder below /tmp that the server's user can reach, wherever the project itself lies."""

    def __init__(self):
        self.root = pathlib.Path(tempfile.mkdtemp(prefix="vela_servers_", dir="/tmp"))
        self.root.chmod(0o755)
        self.site = self.root / "site"
        shutil.copytree(SITE, self.site)

    def remove(self):
        shutil.rmtree(self.root, ignore_errors=True)

    def folder(self, name):
        """A folder of that name that belongs to the server's user."""
        path = self.root / name
        path.mkdir(parents=True, exist_ok=True)
        path.chmod(0o755)
        if SERVER_USER is not None:
            user = pwd.getpwnam(SERVER_USER)
            os.chown(path, user.pw_uid, user.pw_gid)
        return path

    def build_index(self, name, *arguments, site=None):
        """Indexes the site into a folder of that name and puts the program beside the index."""
        index = self.root / name
        subprocess.run(
            [BIN / "vela_index", "--site", site or self.site, "--base-url", "/", "--out", index,
             *arguments],
            check=True, stdout=subprocess.DEVNULL)
        shutil.copy2(BIN / "vela_search", index / "search.cgi")
        for path in index.iterdir():
            if path.is_file():
                path.chmod(0o755 if path.name == "search.cgi" else 0o644)
        index.chmod(0o755)
        return index


def change_settings(index, **values):
    """Changes lines of an index's settings file; each must be there."""
    path = index / "settings.vdat"
    text = path.read_text(encoding="utf-8")
    for key, value in values.items():
        text, count = re.subn(rf"(?m)^{key} = .*$", f"{key} = {value}", text)
        if count != 1:
            raise AssertionError(f"{count} lines for {key} in {path}")
    path.write_text(text, encoding="utf-8")


def run_by_hand(index, method="GET", query="", content_type=None, body=b""):
    """One request to the program without a server: (exit status, header, body) as bytes."""
    environment = {
        "REQUEST_METHOD": method,
        "QUERY_STRING": query,
        "CONTENT_LENGTH": str(len(body)) if body else "",
        "SCRIPT_NAME": "/search/search.cgi",
        "REMOTE_ADDR": "127.0.0.1",
    }
    if content_type is not None:
        environment["CONTENT_TYPE"] = content_type
    done = subprocess.run([index / "search.cgi"], input=body, env=environment, cwd=index,
                          capture_output=True, timeout=60)
    header, separator, page = done.stdout.partition(b"\n\n")
    if not separator or done.stderr:
        raise AssertionError(f"{done.stdout[:200]!r} {done.stderr[:200]!r}")
    return done.returncode, header, page
