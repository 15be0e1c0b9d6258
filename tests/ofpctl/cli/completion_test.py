"""Completion scripts, in the shells themselves where those are installed, and the manual page."""
import pathlib
import re
import shutil
import subprocess
import unittest

from contract_test import commands
from harness import OFPCTL, SandboxTest

SHARE = pathlib.Path(OFPCTL).resolve().parent.parent / "share"


class BashTest(SandboxTest):
    agent = False

    def complete(self, line):
        """What bash offers with the cursor at the end of the line."""
        words = line.split(" ")
        script = ('source <("$OFPCTL" completion bash) || exit 9\n'
                  f"COMP_WORDS=({' '.join(repr(word) for word in words)})\n"
                  f"COMP_CWORD={len(words) - 1}\n_ofpctl\nprintf '%s\\n' \"${{COMPREPLY[@]}}\"\n")
        result = subprocess.run(["bash", "-c", script], capture_output=True, text=True, check=False, timeout=60,
                                cwd=self.sandbox.folder, env=dict(self.sandbox.environment, OFPCTL=OFPCTL))
        self.assertEqual((result.returncode, result.stderr), (0, ""), result)
        return set(result.stdout.split())

    def test_objects_come_first(self):
        self.assertLessEqual({"agent", "flow", "group", "smooth", "table"}, self.complete("ofpctl "))
        self.assertEqual(self.complete("ofpctl fl"), {"flow"})
        self.assertEqual(self.complete("ofpctl --js"), {"--json"})

    def test_then_the_commands_of_the_object(self):
        self.assertEqual(self.complete("ofpctl flow l"), {"load"})
        self.assertLessEqual({"start", "end"}, self.complete("ofpctl --json smooth "))
        self.assertLessEqual({"start", "end"}, self.complete("ofpctl --timeout 5 smooth "))

    def test_then_the_options_of_the_command(self):
        self.assertEqual(self.complete("ofpctl flow show --s"), {"--stats"})
        self.assertEqual(self.complete("ofpctl flow show --client 409"), {"4096", "4097", "4099"})
        self.assertEqual(self.complete("ofpctl smooth start --mode "), {"0", "1"})

    def test_settings_with_their_values(self):
        self.assertEqual(self.complete("ofpctl instance set 1 echo-i"), {"echo-interval="})
        self.assertEqual(self.complete("ofpctl instance set 1 fail"), {"fail-open=secure", "fail-open=standalone"})
        self.assertEqual(self.complete("ofpctl instance set 1 fail-open =", ), {"secure", "standalone"})
        self.assertEqual(self.complete("ofpctl instance set 1 fail-open = st"), {"standalone"})
        self.assertEqual(self.complete("ofpctl vlan set normal"), {"normal-forward-vlans="})
        self.assertEqual(self.complete("ofpctl instance set 1 --dry"), {"--dry-run"})

    def test_files_where_files_are_wanted(self):
        self.sandbox.write("some.flows", "")
        self.assertEqual(self.complete("ofpctl flow load so"), {"some.flows"})
        self.assertEqual(self.complete("ofpctl flow add -f so"), {"some.flows"})
        self.assertEqual(self.complete("ofpctl flow count so"), set())

    def test_the_script_offers_what_the_program_has(self):
        objects = {}
        for noun, verb in commands(self.sandbox):
            objects.setdefault(noun, set()).add(verb)
        self.assertEqual(self.complete("ofpctl ") - {"--help", "--version", "--json"}, set(objects))
        for noun, verbs in objects.items():
            self.assertEqual(self.complete(f"ofpctl {noun} ") - {"--help"}, verbs)
            for verb in verbs:
                options = set(re.findall(r"--[a-z-]+(?= |$)", self.sandbox.run(noun, verb, "--help").out, re.M))
                self.assertLessEqual(self.complete(f"ofpctl {noun} {verb} --"), options)


class OtherShellsTest(SandboxTest):
    agent = False

    def script(self, shell):
        return self.run_ok("completion", shell).out

    def test_as_json(self):
        for shell in ("bash", "zsh", "fish"):
            self.assertEqual(self.run_json(0, "completion", shell)["script"], self.script(shell))

    def test_every_command_is_in_every_script(self):
        for shell, form in (("zsh", "'{} {}')"), ("fish", "__ofpctl_at \"{} {}\"")):
            script = self.script(shell)
            for noun, verb in commands(self.sandbox):
                self.assertIn(form.format(noun, verb), script)

    @unittest.skipUnless(shutil.which("zsh"), "zsh is not installed")
    def test_zsh_takes_its_script(self):
        self.sandbox.write("_ofpctl", self.script("zsh"))
        subprocess.run(["zsh", "-n", "_ofpctl"], cwd=self.sandbox.folder, check=True, timeout=60)

    @unittest.skipUnless(shutil.which("fish"), "fish is not installed")
    def test_fish_completes(self):
        self.sandbox.write("ofpctl.fish", self.script("fish"))
        def complete(line):
            result = subprocess.run(["fish", "--no-config", "-c", f"source ofpctl.fish; complete -C '{line}'"],
                                    cwd=self.sandbox.folder, capture_output=True, text=True, check=True, timeout=60,
                                    env=self.sandbox.environment)
            self.assertEqual(result.stderr, "")
            return {row.split("\t")[0] for row in result.stdout.splitlines()}
        self.assertEqual(complete("ofpctl fl"), {"flow"})
        self.assertEqual(complete("ofpctl flow lo"), {"load"})
        self.assertEqual(complete("ofpctl flow show --cl"), {"--client"})
        self.assertEqual(complete("ofpctl --json smooth st"), {"start"})
        self.assertEqual(complete("ofpctl instance set 1 fail-o"), {"fail-open=secure", "fail-open=standalone"})
        self.assertEqual(complete("ofpctl global set ig"), {"ignore="})


class ManualTest(SandboxTest):
    agent = False

    @unittest.skipUnless((SHARE / "man/man1/ofpctl.1").exists(), "made where scdoc is installed")
    def test_the_manual_page_has_every_command(self):
        page = (SHARE / "man/man1/ofpctl.1").read_text().replace("\\", "")
        for noun, verb in commands(self.sandbox):
            self.assertIn(f"ofpctl {noun} {verb}", page)

    @unittest.skipUnless(shutil.which("groff") and (SHARE / "man/man1/ofpctl.1").exists(), "groff is not installed")
    def test_the_manual_page_is_sound(self):
        result = subprocess.run(["groff", "-man", "-Tutf8", "-ww", "-z", str(SHARE / "man/man1/ofpctl.1")],
                                capture_output=True, text=True, check=False, timeout=60)
        self.assertEqual((result.returncode, result.stderr), (0, ""))

    def test_the_build_made_the_completions(self):
        for name, shell in (("bash-completion/completions/ofpctl", "bash"), ("zsh/site-functions/_ofpctl", "zsh"),
                            ("fish/vendor_completions.d/ofpctl.fish", "fish")):
            self.assertEqual((SHARE / name).read_text(), self.sandbox.run("completion", shell).out)


if __name__ == "__main__":
    unittest.main()
