#!/usr/bin/env python3
"""Three web servers with copies of the index behind a load balancer, under steady load: a server
is killed, the index is replaced, the server comes back, another loses its fcgiwrap, the old index
is taken back. No request is lost, and every answer is complete and of exactly one of the two indexes.

  replicas_test.py haproxy|nginx"""

import collections
import gzip
import http.client
import subprocess
import sys
import threading
import time
import unittest

from asked import FORM, SEARCH
from places import DEPLOY, SITE, Place, change_settings, run_by_hand
from servers import Process, Server, nginx_process, replaced, start_fcgiwrap, start_nginx

BALANCER = None  # the balancer's name, from the command line

QUERIES = ["vela_query=harbour", "vela_query=lighthouse+cliffs&vela_and=1",
           "vela_query=seals&vela_xml=1", "vela_query=caf%C3%A9", "vela_query=tide",
           "vela_query=nothing+like+this"]
SERVERS = ["web1", "web2", "web3"]
THREADS = 4
PHASE = 200        # answers that a phase waits for
PHASE_LIMIT = 100  # seconds that a phase may take

# As in Debian's haproxy.cfg, without what concerns the whole machine.
HAPROXY = """\
global
    maxconn 500
    log stderr format raw local0 notice
defaults
    log global
    mode http
    timeout connect 5000
    timeout client 50000
    timeout server 50000
"""


def start_haproxy(port, work, backends):
    (work / "haproxy.cfg").write_text(HAPROXY + replaced(
        (DEPLOY / "replicas/haproxy.cfg").read_text(),
        {"bind :80": f"bind 127.0.0.1:{port}",
         **{f"192.0.2.1{number}:80": f"127.0.0.1:{backend}"
            for number, backend in enumerate(backends, 1)}}))
    return [Process(["/usr/sbin/haproxy", "-db", "-f", work / "haproxy.cfg"],
                    work / "server.log")]


def start_nginx_balancer(port, work, backends):
    return [nginx_process(work, replaced(
        (DEPLOY / "replicas/nginx.conf").read_text(),
        {"listen 80;": f"listen 127.0.0.1:{port};", "listen [::]:80;": "",
         **{f"192.0.2.1{number}:80": f"127.0.0.1:{backend}"
            for number, backend in enumerate(backends, 1)}}))]


START_BALANCER = {"haproxy": start_haproxy, "nginx": start_nginx_balancer}


def link_to(link, folder):
    """Makes an index folder that is a link lead to another folder, in one step."""
    new = link.with_name("search.next")
    new.symlink_to(folder)
    new.rename(link)


class Load:
    """Threads that ask one search after the other and keep what came back."""

    def __init__(self, port, expected):
        self.port = port
        self.expected = expected  # {answer: index name} for each query
        self.answers = []         # (time of asking, index name)
        self.lost = []            # what was wrong with an answer
        self.only_forms = False   # whether every search is a POST; otherwise every third is
        self._stopped = threading.Event()
        self._threads = [threading.Thread(target=self._run, args=(number,))
                         for number in range(THREADS)]
        for thread in self._threads:
            thread.start()

    def stop(self):
        self._stopped.set()
        for thread in self._threads:
            thread.join()

    def wait_for(self, condition, what):
        end = time.monotonic() + PHASE_LIMIT
        while not condition():
            if time.monotonic() > end:
                raise AssertionError(f"waited in vain for {what}; lost: {self.lost[:3]}")
            time.sleep(0.02)

    def wait_for_answers(self, count=PHASE):
        goal = len(self.answers) + count
        self.wait_for(lambda: len(self.answers) >= goal, f"{count} answers")

    def since(self, moment):
        return collections.Counter(name for asked, name in self.answers if asked >= moment)

    def _run(self, number):
        turn = number
        while not self._stopped.is_set():
            turn += 1
            query = QUERIES[turn % len(QUERIES)]
            asked = time.monotonic()
            try:
                status, page = self._ask(query, self.only_forms or turn % 3 == 0)
            except (OSError, EOFError, http.client.HTTPException) as error:
                self.lost.append(f"{query}: {error!r}")
                continue
            name = self.expected[query].get(page)
            if status != 200 or name is None:
                self.lost.append(f"{query}: {status} {page[:200]!r}, {len(page)} bytes, "
                                 f"ending with {page[-100:]!r}")
            else:
                self.answers.append((asked, name))

    def _ask(self, query, as_form):
        connection = http.client.HTTPConnection("127.0.0.1", self.port, timeout=40)
        try:
            headers = {"Accept-Encoding": "gzip"}  # as every browser says
            if as_form:
                connection.request("POST", SEARCH, query, {**headers, "Content-Type": FORM})
            else:
                connection.request("GET", f"{SEARCH}?{query}", headers=headers)
            answer = connection.getresponse()
            page = answer.read()
            if answer.headers["Content-Encoding"] == "gzip":
                page = gzip.decompress(page)
            return answer.status, page
        finally:
            connection.close()


class ReplicasTest(unittest.TestCase):
    def setUp(self):
        self.place = Place()
        self.addCleanup(self.place.remove)
        self.old = self.build("old")
        self.new = self.build("new")
        self.links = [self.place.folder(name) / "search" for name in SERVERS]
        for name in SERVERS:
            self.place.folder(f"{name}/search.versions/logs")
        self.distribute(self.old)
        self.servers = []
        for name, link in zip(SERVERS, self.links):
            self.servers.append(self.start_server(name, link))
        self.balancer = Server(START_BALANCER[BALANCER], self.place.folder("balancer"),
                               [server.port for server in self.servers])
        self.addCleanup(self.balancer.stop)
        expected = {}
        for query in QUERIES:
            expected[query] = {run_by_hand(index, query=query)[2]: name for name, index in
                               (("old", self.old), ("new", self.new))}
            self.assertEqual(len(expected[query]), 2, "answers that tell the indexes apart")
        self.load = Load(self.balancer.port, expected)
        self.addCleanup(self.load.stop)

    def build(self, name):
        """An index with its name in the template and in every title."""
        template = self.place.root / f"{name}.html"
        template.write_text(f"<html><head><title>{name}</title></head><body>"
                            f"<!--VELASEARCH--><hr>{name} index</body></html>\n")
        for page in self.place.site.rglob("*.html"):
            text = (SITE / page.relative_to(self.place.site)).read_text(encoding="utf-8")
            page.write_text(replaced(text, {"</title>": f" ({name})</title>"}), encoding="utf-8")
        index = self.place.build_index(f"index_{name}", "--template", template)
        change_settings(index, Timing=0, Logging=1)
        (index / "logs").mkdir()  # of the answers run by hand
        return index

    def start_server(self, name, link):
        server = Server(start_nginx, self.place.folder(f"{name}/server"), self.place.site, link)
        self.addCleanup(server.stop)
        return server

    def distribute(self, *arguments):
        subprocess.run([DEPLOY / "replicas/distribute_index.sh", *arguments, *self.links],
                       check=True, stdout=subprocess.DEVNULL, timeout=60)

    def searches_logged_by(self, name):
        log = self.place.root / name / "search.versions/logs/searchwords.log"
        return log.read_text(encoding="utf-8").count('"lighthouse cliffs"') if log.exists() else 0

    def assert_answers_since(self, moment, name):
        self.load.wait_for_answers()
        self.assertEqual(set(self.load.since(moment)), {name})

    def test_no_request_is_lost_or_mixed(self):
        load = self.load
        start = time.monotonic()
        load.wait_for(lambda: all(self.searches_logged_by(name) for name in SERVERS),
                      "answers of all servers")
        self.assert_answers_since(start, "old")

        self.servers[0].kill()
        load.wait_for_answers()

        self.distribute(self.new)
        self.assert_answers_since(time.monotonic(), "new")

        before = self.searches_logged_by("web1")
        self.restart(0)
        load.wait_for(lambda: self.searches_logged_by("web1") > before, "the killed server")
        self.assertGreater(self.searches_logged_by("web3"), 0)

        load.only_forms = True
        # Its nginx runs on and says 502. What fcgiwrap has begun it ends: an answer that breaks off
        # in the middle could not be had again from another server.
        (self.place.root / "web2/server/fcgiwrap.socket").unlink()
        load.wait_for_answers()

        self.distribute("--rollback")
        self.assert_answers_since(time.monotonic(), "old")

        load.stop()
        self.assertEqual(load.lost, [])
        self.assertGreater(load.since(start)["new"], PHASE)

    def test_a_server_with_a_broken_index_is_left_out(self):
        if BALANCER != "haproxy":
            self.skipTest("nginx makes no searches of its own to find out")
        load, link = self.load, self.links[2]
        load.wait_for(lambda: self.searches_logged_by("web3"), "answers of the server")
        whole = link.readlink()
        broken = self.place.build_index("broken")
        (broken / "vela_wordmap.vdat").unlink()
        link_to(link, broken)
        # Visitors may meet the broken index until the second check has failed.
        load.wait_for(lambda: self.lost_in_phase() == 0, "only good answers")

        good = self.searches_logged_by("web3")
        link_to(link, whole)
        load.wait_for(lambda: self.searches_logged_by("web3") > good, "the server again")

    def lost_in_phase(self):
        before = len(self.load.lost)
        self.load.wait_for_answers()
        return len(self.load.lost) - before

    def restart(self, number):
        """Starts a killed server again on its port."""
        server, name = self.servers[number], SERVERS[number]
        work = self.place.root / name / "server"
        server.processes = [start_fcgiwrap(work, self.links[number]),
                            nginx_process(work, (work / "site.conf").read_text())]


if __name__ == "__main__":
    BALANCER = sys.argv.pop(1)
    unittest.main()
