#!/usr/bin/env python3
"""A site in parts, by the examples that docs/scaling.md names: what make and GNU parallel run, also by
ssh, is the index of one run; what needs a cluster is tried with a stand-in for its command, or read."""

import getpass
import os
import shutil
import socket
import subprocess
import time
import unittest

import support

EXAMPLES = support.PROJECT / "examples/parts"
PARTS = 3


def sshd_program():
    return shutil.which("sshd", path=f"{os.environ['PATH']}:/usr/sbin")


class SshServer:
    """A server on this machine, for the user who runs the tests, known under several names."""

    def __init__(self, folder, hosts):
        folder.mkdir()
        for key in ("host_key", "user_key"):
            subprocess.run(["ssh-keygen", "-q", "-t", "ed25519", "-N", "", "-f", folder / key],
                           check=True)
        shutil.copy(folder / "user_key.pub", folder / "authorized_keys")
        with socket.socket() as free:
            free.bind(("127.0.0.1", 0))
            port = free.getsockname()[1]
        host_key = (folder / "host_key.pub").read_text()
        (folder / "known_hosts").write_text(f"[127.0.0.1]:{port} {host_key}")
        (folder / "sshd_config").write_text(
            f"Port {port}\nListenAddress 127.0.0.1\nHostKey {folder}/host_key\n"
            f"AuthorizedKeysFile {folder}/authorized_keys\nPidFile none\nStrictModes no\n"
            "UsePAM no\nPasswordAuthentication no\nAcceptEnv VELA_HOST\n")
        self.config = folder / "ssh_config"
        self.config.write_text("".join(
            f"Host {host}\n  SetEnv VELA_HOST={host}\n" for host in hosts) +
            f"Host *\n  HostName 127.0.0.1\n  Port {port}\n  User {getpass.getuser()}\n"
            f"  IdentityFile {folder}/user_key\n  IdentitiesOnly yes\n  BatchMode yes\n"
            f"  UserKnownHostsFile {folder}/known_hosts\n  StrictHostKeyChecking yes\n")
        if os.geteuid() == 0:
            os.makedirs("/run/sshd", mode=0o755, exist_ok=True)  # as its service does
        self.log = folder / "log"
        with open(self.log, "wb") as log:
            self.process = subprocess.Popen([sshd_program(), "-D", "-e", "-f",
                                             folder / "sshd_config"], stderr=log)
        for _ in range(100):
            with socket.socket() as asked:
                if asked.connect_ex(("127.0.0.1", port)) == 0:
                    return
            time.sleep(0.05)
        self.stop()
        raise AssertionError("sshd does not answer:\n" + self.log.read_text())

    def stop(self):
        self.process.terminate()
        self.process.wait()


class Parts(unittest.TestCase):
    def setUp(self):
        self.folder = support.WORK / self._testMethodName
        shutil.rmtree(self.folder, ignore_errors=True)
        self.folder.mkdir(parents=True)
        self.config = self.folder / "vela_index.toml"
        self.config.write_text(f'[site]\nfolder = "{support.SAMPLE_SITE}"\nbase_url = "/"\n'
                               f'out = "{self.folder / "index"}"\n')
        self.environment = dict(os.environ, CONFIG=str(self.config), PARTS=str(PARTS),
                                STATE=str(self.folder / "parts"),
                                VELA_INDEX=str(support.BIN / "vela_index"))

    def run_example(self, *command, **environment):
        done = subprocess.run(command, env=dict(self.environment, **environment), cwd=self.folder,
                              capture_output=True, text=True)
        self.assertEqual(done.returncode, 0, done.stdout + done.stderr)
        return done.stdout

    def expect_index_of_one_run(self):
        subprocess.run([support.BIN / "vela_index", "--quiet", "--config", self.config, "--out",
                        self.folder / "whole"], check=True)
        subprocess.run(["diff", "-r", self.folder / "whole", self.folder / "index"], check=True)

    def test_make(self):
        if shutil.which("make") is None:
            self.skipTest("make is not installed")
        for _ in range(2):  # the parts are there the second time
            self.run_example("make", "-j2", "-f", EXAMPLES / "Makefile")
            self.expect_index_of_one_run()

    def test_parallel(self):
        if shutil.which("parallel") is None:
            self.skipTest("GNU parallel is not installed")
        self.run_example(EXAMPLES / "parallel.sh", HOME=str(self.folder))
        self.expect_index_of_one_run()
        self.config.write_text("[site]\nnonsense = 1\n")
        done = subprocess.run([EXAMPLES / "parallel.sh"], cwd=self.folder, capture_output=True,
                              env=dict(self.environment, HOME=str(self.folder)))
        self.assertNotEqual(done.returncode, 0)

    def test_parallel_by_ssh(self):
        if None in (shutil.which("parallel"), shutil.which("ssh"), sshd_program()):
            self.skipTest("GNU parallel, openssh-client or openssh-server is not installed")
        server = SshServer(self.folder / "ssh", ["sound", "broken"])
        self.addCleanup(server.stop)
        # Notes on which host it runs; on one of them it cannot.
        program = self.folder / "vela_index"
        program.write_text(f'#!/bin/sh\necho "${{VELA_HOST:-here}}" >>{self.folder}/ran\n'
                           '[ "${VELA_HOST:-}" != broken ] || exit 1\n'
                           f'exec {support.BIN / "vela_index"} "$@"\n')
        program.chmod(0o755)
        self.run_example(EXAMPLES / "parallel.sh", HOME=str(self.folder), HOSTS="sound,broken",
                         PARALLEL_SSH=f"ssh -F {server.config}", VELA_INDEX=str(program))
        ran = (self.folder / "ran").read_text().split()
        self.assertEqual(ran.count("sound"), PARTS)
        self.assertGreaterEqual(ran.count("broken"), 1)
        self.assertEqual(ran[-1], "here")  # the merge
        self.expect_index_of_one_run()

    def test_slurm(self):
        # In the place of the real one: runs the tasks of an array, or what is wrapped, at once.
        sbatch = self.folder / "bin" / "sbatch"
        sbatch.parent.mkdir()
        sbatch.write_text("""#!/bin/bash
set -eu
last=${!#}
for option in "$@"; do
  case $option in
    --array=1-*) count=${option#--array=1-} ;;
    --wrap=*) bash -c "${option#--wrap=}" >&2; echo 2; exit ;;
  esac
done
for number in $(seq "$count"); do
  SLURM_ARRAY_TASK_ID=$number SLURM_ARRAY_TASK_COUNT=$count bash "$last"
done
echo 1
""")
        sbatch.chmod(0o755)
        subprocess.run(["bash", "-n", EXAMPLES / "slurm.sh"], check=True)
        said = self.run_example(EXAMPLES / "slurm.sh", str(PARTS),
                                PATH=f"{sbatch.parent}:{os.environ['PATH']}")
        self.assertEqual(said, "2\n")
        self.expect_index_of_one_run()

    def test_kubernetes(self):
        try:
            import yaml
        except ImportError:
            self.skipTest("python3-yaml is not installed")
        jobs = list(yaml.safe_load_all((EXAMPLES / "kubernetes.yaml").read_text()))
        self.assertEqual([(job["apiVersion"], job["kind"]) for job in jobs], [("batch/v1", "Job")] * 2)
        read, merge = jobs
        count = read["spec"]["completions"]
        self.assertEqual(read["spec"]["completionMode"], "Indexed")
        # The commands, run by a shell as they stand, with folders of this machine.
        folders = {"/config": self.folder, "/state": self.folder / "parts"}
        (self.folder / "parts").mkdir()

        def run_job(job, **environment):
            pod = job["spec"]["template"]["spec"]
            container, = pod["containers"]
            volumes = {volume["name"] for volume in pod["volumes"]}
            for mount in container["volumeMounts"]:
                self.assertIn(mount["name"], volumes)
                folders.setdefault(mount["mountPath"], self.folder)
            shell, flag, command = container["command"]
            for inside in ("/config", "/state"):
                command = command.replace(inside, str(folders[inside]))
            path = f"{support.BIN}:{os.environ['PATH']}"
            subprocess.run([shell, flag, command], check=True, stdout=subprocess.DEVNULL,
                           env=dict(os.environ, PATH=path, **environment))

        for index in range(count):
            run_job(read, JOB_COMPLETION_INDEX=str(index))
        run_job(merge)
        self.expect_index_of_one_run()

    def test_what_does_not_go_with_parts(self):
        index = str(support.BIN / "vela_index")
        state = str(self.folder / "parts")
        for options, said in [
                (["--part", "1/2"], "--state DIR"),
                (["--part", "3/2", "--state", state], "--part 2/7"),
                (["--part", "x", "--state", state], "--part 2/7"),
                (["--part", "1/2", "--state", state, "--merge", state], "does not go with --merge"),
                (["--part", "1/2", "--state", state, "--dry-run"], "does not go with --dry-run"),
                (["--part", "1/2", "--state", state, "--report", "r"], "does not go with --report"),
                (["--merge", state, "--check-links"], "does not go with --check-links"),
                (["--merge", str(self.folder)], "holds no part")]:
            done = subprocess.run([index, "--config", self.config, *options], capture_output=True,
                                  text=True)
            self.assertEqual(done.returncode, 2, done.stdout + done.stderr)
            self.assertIn(said, done.stderr)
        self.assertFalse((self.folder / "index").exists())


if __name__ == "__main__":
    unittest.main()
