#!/usr/bin/env python3
"""A site in parts, by the examples that docs/scaling.md names: what make and GNU parallel run is the
index of one run; what needs a cluster is tried with a stand-in for its command, or read."""

import os
import shutil
import subprocess
import unittest

import support

EXAMPLES = support.PROJECT / "examples/parts"
PARTS = 3


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
