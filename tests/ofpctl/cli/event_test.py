"""event monitor, app list and app show: events as they come, ends and restarts."""
import json
import re
import signal
import socket
import threading
import unittest

from harness import SandboxTest, interrupt
from requests import activate_instance, add_instance, remove_instance, set_controller, unset_controller

INSTANCE = 5


class EventTest(SandboxTest):
    def setUp(self):
        self.sandbox.start_agent()
        add_instance(self.sandbox, INSTANCE)
        activate_instance(self.sandbox, INSTANCE)
        self.monitors = []

    def tearDown(self):
        for monitor in self.monitors:
            if monitor.poll() is None:
                monitor.kill()
            monitor.communicate()
        remove_instance(self.sandbox, INSTANCE)

    def monitor(self, *words):
        """Under way and subscribed."""
        before = self.apps()
        process = self.sandbox.start("event", "monitor", *words)
        self.monitors.append(process)
        self.wait_until(lambda: process.poll() is not None or self.apps() != before)
        return process

    def apps(self):
        return [(app["app"], app["events"]) for app in self.run_json(0, "app", "list")["apps"]]

    def finish(self, process):
        result = self.sandbox.finish(process)
        self.monitors.remove(process)
        return result


class MonitorTest(EventTest):
    def test_text_tells_what_happened_with_its_time(self):
        process = self.monitor("--count", "4")
        set_controller(self.sandbox, INSTANCE, 7, 1)
        unset_controller(self.sandbox, INSTANCE, 7)
        result = self.finish(process)
        self.assertEqual(result.status, 0, result)
        lines = result.out.splitlines()
        self.assertEqual([re.sub(r"^\d{4}-\d\d-\d\d \d\d:\d\d:\d\d\.\d{3} ", "", line) for line in lines],
                         ["configured instance=5 controller=7 address=127.0.0.1 connected=no",
                          "status connected=0",
                          "removed instance=5 controller=7 address=127.0.0.1 connected=no",
                          "status connected=0"])

    def test_json_is_an_object_a_line_and_the_outcome(self):
        process = self.monitor("--json", "--count", "2")
        set_controller(self.sandbox, INSTANCE, 7, 1)
        result = self.finish(process)
        documents = [json.loads(line) for line in result.out.splitlines()]
        self.assertEqual(len(documents), 3, result)
        for document in documents:
            self.assertEqual((document.pop("schema"), document.pop("ok")), ("ofpctl/1", True))
        for document in documents[:2]:
            self.assertRegex(document.pop("time"), r"^\d{4}-\d\d-\d\dT\d\d:\d\d:\d\d\.\d{6}Z$")
        self.assertEqual(documents, [
            {"event": "configured", "type": 2, "instance": 5, "controller": 7, "address": "127.0.0.1",
             "connected": False},
            {"event": "status", "type": 16, "connected": 0},
            {"events": "2"}])

    def test_a_real_connection_comes_and_goes(self):
        with socket.create_server(("127.0.0.1", 0)) as listener:
            process = self.monitor("connection", "--count", "2")
            set_controller(self.sandbox, INSTANCE, 0, listener.getsockname()[1])
            listener.settimeout(20)
            peer, _ = listener.accept()
            with peer:
                peer.settimeout(20)
                self.assertEqual(peer.recv(8)[:2], b"\x04\x00")
                peer.sendall(b"\x04\x00\x00\x08\x00\x00\x00\x01")
                self.assertTrue(process.stdout.readline().endswith(
                    "connection instance=5 controller=0 address=127.0.0.1 connected=yes\n"))
        self.assertIn("connected=no", self.finish(process).out)

    def test_only_the_chosen_types_by_name_or_number(self):
        process = self.monitor("removed", "16", "--count", "3")
        self.assertIn((11, ["removed", "status"]), self.apps())
        set_controller(self.sandbox, INSTANCE, 7, 1)
        unset_controller(self.sandbox, INSTANCE, 7)
        kinds = [line.split()[2] for line in self.finish(process).out.splitlines()]
        self.assertEqual(kinds, ["status", "removed", "status"])

    def test_a_duration_ends_it_well(self):
        result = self.sandbox.run("event", "monitor", "--duration", "1")
        self.assertEqual((result.status, result.out, result.err), (0, "", ""))
        self.assertEqual(self.run_json(0, "event", "monitor", "--duration", "1")["events"], "0")

    def test_signals_end_it(self):
        for number, status in ((signal.SIGINT, 130), (signal.SIGTERM, 143)):
            process = self.monitor("--json")
            interrupt(process, number)
            result = self.finish(process)
            self.assertEqual(result.status, status, result)
            self.assertEqual(result.json()["error"]["name"], "INTERRUPTED")
            self.wait_until(lambda: self.apps() == [])

    def test_ends_with_the_agent(self):
        for stop in (lambda: self.run_ok("agent", "stop"),
                     lambda: __import__("os").kill(self.sandbox.agent_pid(), signal.SIGKILL)):
            process = self.monitor()
            stop()
            result = self.finish(process)
            self.assertEqual(result.status, 3, result)
            self.assertIn("went away", result.err)
            self.sandbox.start_agent()

    def test_follow_goes_on_with_the_next_agent(self):
        process = self.monitor("--follow", "configured", "--count", "2")
        set_controller(self.sandbox, INSTANCE, 1, 1)
        self.assertIn("controller=1", process.stdout.readline())
        self.run_ok("agent", "stop")
        self.sandbox.start_agent()
        self.wait_until(lambda: self.apps() == [(11, ["configured"])])
        set_controller(self.sandbox, INSTANCE, 2, 1)
        result = self.finish(process)
        self.assertEqual(result.status, 0, result)
        self.assertIn("controller=2", result.out)
        self.assertRegex(result.err, "(went away|was restarted).*missed until it is back")

    def test_follow_waits_for_the_first_agent_too(self):
        self.run_ok("agent", "stop")
        process = self.sandbox.start("event", "monitor", "--follow", "--count", "1", "configured")
        self.monitors.append(process)
        self.sandbox.start_agent()
        self.wait_until(lambda: self.apps() == [(11, ["configured"])])
        set_controller(self.sandbox, INSTANCE, 2, 1)
        self.assertEqual(self.finish(process).status, 0)

    def test_without_an_agent(self):
        self.run_ok("agent", "stop")
        self.run_fails(3, "event", "monitor")
        self.run_fails(3, "app", "list")
        self.sandbox.start_agent()

    def test_wrong_usage(self):
        for words, error in ((("conection",), "conection: no such event; did you mean connection?"),
                             (("3",), "3: no such event; one of configured, connection, removed, status"),
                             (("--app", "12"), '--app: "12" is not'), (("--count", "0"), '--count: "0" is not')):
            with self.subTest(words):
                self.assertIn(error, self.run_fails(2, "event", "monitor", *words).err)

    def test_a_burst_is_printed_whole_and_in_order(self):
        process = self.monitor("configured", "--count", "1000", "--json")
        lines = []
        reader = threading.Thread(target=lambda: lines.extend(process.stdout))
        reader.start()
        for number in range(1000):
            set_controller(self.sandbox, INSTANCE, number % 64, number % 1000 + 1)
        reader.join(60)
        self.assertEqual(self.finish(process).status, 0)
        self.assertEqual([json.loads(line)["controller"] for line in lines[:-1]],
                         [number % 64 for number in range(1000)])


class ApplicationTest(EventTest):
    def test_each_monitor_takes_a_free_application(self):
        self.monitor("status")
        self.monitor("--app", "3", "removed")
        self.monitor("connection")
        self.assertEqual(self.apps(), [(3, ["removed"]), (10, ["connection"]), (11, ["status"])])
        result = self.run_fails(1, "event", "monitor", "--app", "3")
        self.assertIn("application 3 is registered by process", result.err)

    def test_show_tells_process_and_events(self):
        process = self.monitor("status")
        set_controller(self.sandbox, INSTANCE, 7, 1)
        self.assertIn("status connected=0", process.stdout.readline())
        document = self.run_json(0, "app", "show", "11")
        self.assertEqual({key: document[key] for key in ("app", "process", "events", "sent", "waiting", "dropped")},
                         {"app": 11, "process": process.pid, "events": ["status"], "sent": "1",
                          "waiting": "0", "dropped": "0"})
        text = self.run_ok("app", "show", "11").out
        self.assertIn(f"process         {process.pid}\n", text)
        self.assertIn("subscribed to   status\n", text)
        self.assertIn("11", self.run_ok("app", "list").out)

    def test_show_of_nobody(self):
        self.assertIn("application 4: nobody is registered", self.run_fails(5, "app", "show", "4").err)
        self.run_fails(2, "app", "show", "12")

    def test_a_monitor_that_does_not_read_loses_events_and_the_agent_counts_them(self):
        process = self.monitor()
        process.send_signal(signal.SIGSTOP)
        rounds = 36
        for _round in range(rounds):
            for number in range(64):
                set_controller(self.sandbox, INSTANCE, number, 1)
            unset_controller(self.sandbox, INSTANCE, 64)     # all of them
        document = self.run_json(0, "app", "show", "11")
        self.assertEqual(document["waiting"], "8192")
        self.assertGreater(int(document["dropped"]), 0)
        self.assertEqual(int(document["sent"]) + int(document["waiting"]) + int(document["dropped"]),
                         rounds * 64 * 4)
        process.kill()


if __name__ == "__main__":
    unittest.main()
