"""Starts web servers from the files of deploy/. Only folders, ports and the user are replaced in
those files; what a server's Debian package would have around them is written here."""

import os
import pathlib
import shutil
import signal
import socket
import subprocess
import time

from places import DEPLOY, PROJECT, SERVER_USER

PROGRAM_PATH = os.environ.get("PATH", "") + ":/usr/sbin:/sbin"
ENVIRONMENT = {"PATH": PROGRAM_PATH, "LANG": "C"}


def free_port():
    with socket.socket() as probe:
        probe.bind(("127.0.0.1", 0))
        return probe.getsockname()[1]


def program(name):
    path = shutil.which(name, path=PROGRAM_PATH)
    if path is None:
        raise AssertionError(f"{name} is missing: scripts/install_packages.sh serve site")
    return path


def replaced(text, replacements):
    """`text` with every replacement made; one that finds nothing is an error of the test."""
    for old, new in replacements.items():
        if old not in text:
            raise AssertionError(f"{old!r} is not in the configuration")
        text = text.replace(old, str(new))
    return text


class Process:
    """A process and all that it starts."""

    def __init__(self, arguments, log, **options):
        self.log = pathlib.Path(log)
        with open(self.log, "ab") as out:
            self.process = subprocess.Popen(arguments, stdout=out, stderr=out, env=ENVIRONMENT,
                                            start_new_session=True, **options)

    def runs(self):
        return self.process.poll() is None

    def stop(self):
        self.process.terminate()
        try:
            self.process.wait(10)
        except subprocess.TimeoutExpired:
            pass
        self.kill()

    def kill(self):
        try:
            os.killpg(self.process.pid, signal.SIGKILL)  # the group may outlive its first process
        except ProcessLookupError:
            pass
        self.process.wait()


class Server:
    """A running server: its port, and its processes with the one that listens last."""

    def __init__(self, start, *arguments):
        """`start(port, ...)` returns the processes. Another program may have taken the free port
        before the server does, so a server that ends is started again on another."""
        for attempt in range(3):
            self.port = free_port()
            self.processes = start(self.port, *arguments)
            if self._wait_for_port():
                return
            self.stop()
        raise AssertionError(f"the server did not start:\n{self.messages()}")

    def _wait_for_port(self):
        end = time.monotonic() + 20
        while time.monotonic() < end and all(process.runs() for process in self.processes):
            try:
                socket.create_connection(("127.0.0.1", self.port), 1).close()
                return all(process.runs() for process in self.processes)
            except OSError:
                time.sleep(0.02)
        return False

    def messages(self):
        """What the server wrote, standard error and log files."""
        folder = self.processes[0].log.parent
        return "".join(log.read_text(errors="replace") for log in sorted(folder.glob("*.log")))

    def stop(self):
        for process in reversed(self.processes):
            process.stop()

    def kill(self):
        """Ends it without a chance to finish anything, what listens first."""
        for process in reversed(self.processes):
            process.kill()


def start_fcgiwrap(work, index):
    """fcgiwrap as systemd starts it: the socket is its standard input."""
    starts = [line.partition("=")[2] for line in (DEPLOY / "fcgiwrap.conf").read_text().splitlines()
              if line.startswith("ExecStart=")]
    arguments = replaced(starts[-1], {"/var/www/search": index}).split()
    path = work / "fcgiwrap.socket"
    path.unlink(missing_ok=True)
    with socket.socket(socket.AF_UNIX) as listener:
        listener.bind(str(path))
        listener.listen(4096)
        path.chmod(0o666)
        return Process(arguments, work / "fcgiwrap.log", stdin=listener, user=SERVER_USER,
                       group=SERVER_USER, extra_groups=[] if SERVER_USER else None)


APACHE = """\
ServerName 127.0.0.1
ServerRoot {work}
PidFile {work}/apache.pid
ErrorLog {work}/apache.log
ScriptSock {work}/cgid.sock
Mutex file:{work} default
Listen 127.0.0.1:{port}
LogFormat "%h %t \\"%r\\" %>s %b" combined
TypesConfig {work}/mime.types
{modules}
{user}
Include {work}/site.conf
"""
# What Debian enables, and the two that the configuration asks for.
APACHE_MODULES = """mpm_event access_compat alias auth_basic authn_core authn_file authz_core
    authz_host authz_user autoindex deflate dir env filter mime negotiation reqtimeout setenvif
    status cgid headers""".split()


def start_apache(port, work, site, index):
    (work / "mime.types").write_text("text/html html\n")
    (work / "site.conf").write_text(replaced((DEPLOY / "apache.conf").read_text(), {
        "/var/www/site": site, "/var/www/search": index, "*:80": f"127.0.0.1:{port}",
        "${APACHE_LOG_DIR}": work}))
    (work / "apache.conf").write_text(APACHE.format(
        work=work, port=port,
        user=f"User {SERVER_USER}\nGroup {SERVER_USER}" if SERVER_USER else "",
        modules="\n".join(f"LoadModule {name}_module /usr/lib/apache2/modules/mod_{name}.so"
                          for name in APACHE_MODULES)))
    return [Process([program("apache2"), "-f", work / "apache.conf", "-D", "FOREGROUND"],
                    work / "server.log")]


NGINX = """\
daemon off;
worker_processes 2;
pid {work}/nginx.pid;
error_log stderr;
{user}
events {{ worker_connections 512; }}
http {{
    types {{ text/html html; }}
    default_type application/octet-stream;
    access_log off;
    sendfile on;
    gzip on;
    client_body_temp_path {work}/body;
    proxy_temp_path {work}/proxy;
    fastcgi_temp_path {work}/fastcgi;
    uwsgi_temp_path {work}/uwsgi;
    scgi_temp_path {work}/scgi;
    include {work}/site.conf;
}}
"""


def nginx_process(work, site_conf):
    """An nginx of its own with the given file in the place of Debian's sites-enabled."""
    (work / "site.conf").write_text(site_conf)
    (work / "nginx.conf").write_text(NGINX.format(
        work=work, user=f"user {SERVER_USER};" if SERVER_USER else ""))
    return Process([program("nginx"), "-e", "stderr", "-c", work / "nginx.conf"],
                   work / "server.log")


def start_nginx(port, work, site, index):
    fcgiwrap = start_fcgiwrap(work, index)
    return [fcgiwrap, nginx_process(work, replaced((DEPLOY / "nginx.conf").read_text(), {
        "/var/www/site": site, "/var/www/search": index,
        "/run/fcgiwrap.socket": work / "fcgiwrap.socket",
        "listen 80;": f"listen 127.0.0.1:{port};", "listen [::]:80;": ""}))]


# As in Debian's lighttpd.conf.
LIGHTTPD = """\
server.modules = ("mod_indexfile", "mod_access", "mod_alias", "mod_redirect")
server.document-root = "/var/www/html"
server.upload-dirs = ("{work}")
server.errorlog = "{work}/lighttpd.log"
server.bind = "127.0.0.1"
server.port = {port}
{user}
server.http-parseopts = (
  "header-strict" => "enable", "host-strict" => "enable", "host-normalize" => "enable",
  "url-normalize-unreserved"=> "enable", "url-normalize-required" => "enable",
  "url-ctrls-reject" => "enable", "url-path-2f-decode" => "enable",
  "url-path-dotseg-remove" => "enable"
)
index-file.names = ("index.php", "index.html")
url.access-deny = ("~", ".inc")
mimetype.assign = (".html" => "text/html")
include "{work}/site.conf"
server.modules += ("mod_dirlisting", "mod_staticfile")
"""


def start_lighttpd(port, work, site, index):
    user = f'server.username = "{SERVER_USER}"\nserver.groupname = "{SERVER_USER}"\n'
    (work / "site.conf").write_text(replaced((DEPLOY / "lighttpd.conf").read_text(), {
        "/var/www/site": site, "/var/www/search": index}))
    (work / "lighttpd.conf").write_text(LIGHTTPD.format(
        work=work, port=port, user=user if SERVER_USER else ""))
    return [Process([program("lighttpd"), "-D", "-f", work / "lighttpd.conf"],
                    work / "server.log")]


def start_caddy(port, work, site, index):
    fcgiwrap = start_fcgiwrap(work, index)
    (work / "site.caddy").write_text(replaced((DEPLOY / "Caddyfile").read_text(), {
        "/var/www/site": site, "/var/www/search": index,
        "/run/fcgiwrap.socket": work / "fcgiwrap.socket", ":80 {": f":{port} {{"}))
    (work / "Caddyfile").write_text(
        f"{{\n\tadmin off\n\tdefault_bind 127.0.0.1\n}}\nimport {work}/site.caddy\n")
    return [fcgiwrap,
            Process(["/usr/bin/env", f"HOME={work}", program("caddy"), "run",
                     "--config", work / "Caddyfile"],
                    work / "server.log", user=SERVER_USER, group=SERVER_USER,
                    extra_groups=[] if SERVER_USER else None)]


def start_demo(port, work, site, index):
    """The configuration of demo.sh."""
    (work / "lighttpd.conf").write_bytes(subprocess.run(
        [PROJECT / "scripts/lighttpd_config.sh", site, index, str(port)],
        check=True, stdout=subprocess.PIPE).stdout)
    return [Process([program("lighttpd"), "-D", "-f", work / "lighttpd.conf"],
                    work / "server.log")]


START = {"apache": start_apache, "nginx": start_nginx, "lighttpd": start_lighttpd,
         "caddy": start_caddy, "demo": start_demo}
