"""Tests the message viewer in Chromium: viewer_test.py DIR QUORVAXDR"""

from __future__ import annotations

import json
import os
import pathlib
import subprocess
import sys
import tempfile
import time
import unittest
from typing import Any

import browser
import packets
from selenium.webdriver.common.action_chains import ActionChains
from selenium.webdriver.common.by import By
from selenium.webdriver.common.keys import Keys
from selenium.webdriver.support.wait import WebDriverWait

QUORVAXDR = sys.argv.pop(2)
FOLDER = pathlib.Path(sys.argv.pop(1)).resolve()
PROGRAM = 0x20000F01  # of the print spooler
TYPE = "JobMngParameters"
MESSAGE = bytes.fromhex("00000005 00000005 000000e7 00000004 34373131") + bytes(32)  # to cancel a job
CUT = MESSAGE[:14]
PADDED = MESSAGE[:15] + b"\x03471\0" + MESSAGE[20:]
DAMAGED = MESSAGE[:15] + b"\3" + MESSAGE[16:]  # a length of 3, and padding that is not zero


def inspected(verb: str, type_name: str, message: bytes) -> Any:
    command = [QUORVAXDR, verb, type_name, "--from", "raw", *(["--to", "json"] if verb == "decode" else ["--json"])]
    return json.loads(subprocess.run(command, input=message, capture_output=True).stdout)


def dump(message: bytes) -> str:
    return subprocess.run(["od", "-A", "x", "-t", "x1"], input=message, capture_output=True, check=True).stdout.decode()


class Viewer(browser.Pages):
    folder = FOLDER

    def setUp(self) -> None:
        super().setUp()
        self.browser.get((FOLDER / "viewer.html").as_uri())

    def find(self, selector: str) -> Any:
        return self.browser.find_element(By.CSS_SELECTOR, selector)

    def show(self, type_name: str, text: str) -> str:
        """What the page says of the message."""
        self.find("#type").clear()
        self.find("#type").send_keys(type_name)
        self.browser.execute_script("document.getElementById('message').value = arguments[0]", text)
        self.find("#form button").click()
        status: str = self.find("#status").text
        return status

    def parts(self) -> list[Any]:
        """Of each row of the tree: depth, name, type, and the text in front of the contents."""
        rows: list[Any] = self.browser.execute_script("""
            document.getElementById("unfold").click();
            return [...document.querySelectorAll("[role=treeitem]")].map((row) => [Number(row.ariaLevel) - 1,
                ...["name", "kind", "value"].map((each) => row.querySelector(`.${each}`).textContent)])""")
        return [[*row[:3], row[3].split("  ")[0]] for row in rows]

    def lit(self) -> tuple[str, list[str]]:
        """The bytes and the names of the parts that are lit."""
        spans = self.browser.find_elements(By.CSS_SELECTOR, "#bytes .lit")
        rows = self.browser.find_elements(By.CSS_SELECTOR, "#tree .lit .name")
        return " ".join(span.text for span in spans), [row.text for row in rows]

    def test_a_dump_shows_the_inspectors_parts(self) -> None:
        self.assertRegex(self.show(TYPE, dump(MESSAGE)), "^read as a dump: 52 bytes, decodes, 0 findings")
        nodes = inspected("annotate", TYPE, MESSAGE)["nodes"]
        expected = [[each["depth"], each["name"], each.get("type", each["kind"]), each.get("text", "")]
                    for each in nodes]
        expected[0][2] = nodes[0]["kind"]  # its type is its name
        self.assertEqual(expected, self.parts())

    def test_damage_is_told_at_its_place(self) -> None:
        for message in (CUT, MESSAGE[:12], DAMAGED):
            self.show(TYPE, message.hex())
            listed = [item.text for item in self.browser.find_elements(By.CSS_SELECTOR, "#findings li")]
            expected = inspected("validate", TYPE, message)
            self.assertTrue(expected)
            self.assertEqual([f"byte {each['offset']} {each['path']}: {each['code']}: {each['sentence']}"
                              for each in expected], listed)
            marked = self.find("#bytes .wrong, #bytes .refusal")
            before: str = self.browser.execute_script("""
                return [...document.querySelectorAll("#bytes [data-segment]")]
                    .filter((each) => each.compareDocumentPosition(arguments[0]) & Node.DOCUMENT_POSITION_FOLLOWING)
                    .map((each) => each.textContent).join(" ")""", marked)
            self.assertEqual(expected[0]["offset"], len(before.split()))
            self.assertIn(expected[0]["sentence"], self.find("#tree .wrong, #tree .refusal").text)

    def test_the_pointer_lights_both_sides(self) -> None:
        self.show(TYPE, MESSAGE.hex())
        ActionChains(self.browser).move_to_element(self.find("#bytes [data-segment='2']")).perform()
        self.assertEqual(("00 00 00 e7", ["job"]), self.lit())
        names = self.browser.find_elements(By.CSS_SELECTOR, "#tree .name")
        ActionChains(self.browser).move_to_element(next(each for each in names if each.text == "jobId")).perform()
        self.assertEqual(("00 00 00 05 00 00 00 e7", ["jobId"]), self.lit())

    def test_the_keyboard_is_enough(self) -> None:
        keys = ActionChains(self.browser)
        self.find("#type").send_keys(TYPE, Keys.TAB, Keys.TAB)  # over the file
        keys.send_keys(MESSAGE.hex(), Keys.TAB, Keys.ENTER).perform()
        while self.browser.switch_to.active_element.get_attribute("id") != "bytes":
            ActionChains(self.browser).send_keys(Keys.TAB).perform()
        ActionChains(self.browser).send_keys(Keys.ARROW_RIGHT * 8).perform()
        self.assertEqual(("00 00 00 e7", ["job"]), self.lit())
        ActionChains(self.browser).send_keys(Keys.ENTER, Keys.ARROW_DOWN).perform()
        self.assertEqual("pinNumber", self.browser.switch_to.active_element.find_element(By.CLASS_NAME, "name").text)
        self.assertEqual(["pinNumber"], self.lit()[1])
        ActionChains(self.browser).send_keys(Keys.HOME, Keys.ARROW_LEFT).perform()
        shown = [each for each in self.browser.find_elements(By.CSS_SELECTOR, "#tree .name") if each.is_displayed()]
        self.assertEqual([TYPE], [each.text for each in shown])

    def test_a_link_holds_type_and_message(self) -> None:
        self.show(TYPE, MESSAGE.hex())
        parts, link = self.parts(), self.browser.current_url
        self.assertIn("#type=" + TYPE, link)
        self.browser.get("about:blank")
        self.browser.get(link)
        self.assertEqual(parts, self.parts())
        self.assertRegex(self.find("#status").text, "^from the link: 52 bytes, decodes")

    def test_the_inspector_makes_links(self) -> None:
        message = MESSAGE + bytes(2) + b"\xfb\xff"  # letters that links spell in their own way
        command = [QUORVAXDR, "open", TYPE, "--from", "raw", "--site", str(FOLDER)]
        link = subprocess.run([*command, "--print"], input=message, capture_output=True, check=True).stdout.decode()
        self.show(TYPE, message.hex())
        self.assertEqual(self.browser.current_url + "\n", link)
        with tempfile.TemporaryDirectory() as folder:
            program, opened = pathlib.Path(folder, "program"), pathlib.Path(folder, "opened")
            program.write_text(f"#!/bin/sh\nprintf '%s\\n' \"$1\" >{opened}.new\nmv {opened}.new {opened}\n")
            program.chmod(0o755)
            run = subprocess.run(command, input=message, capture_output=True, check=True,
                                 env={**os.environ, "BROWSER": str(program)})
            WebDriverWait(self.browser, 20).until(lambda _: opened.exists())
            self.assertEqual((b"", link), (run.stdout, opened.read_text()))

    def test_a_type_is_guessed(self) -> None:
        self.assertRegex(self.show("", MESSAGE.hex()), "the likeliest of [0-9]+ types")
        self.assertEqual(TYPE, self.find("#type").get_attribute("value"))

    def test_a_file_is_read(self) -> None:
        with tempfile.NamedTemporaryFile(suffix=".bin") as file:
            file.write(MESSAGE)
            file.flush()
            self.find("#type").send_keys(TYPE)
            self.find("#file").send_keys(file.name)
            time.sleep(0.5)
        self.assertRegex(self.find("#status").text, "^read as bytes: 52 bytes, decodes")

    def test_errors_are_told(self) -> None:
        for type_name, text, sentence in (
            (TYPE, "", "the message is empty"),
            (TYPE, "000", "the number of hexadecimal digits is odd"),
            (TYPE, "<message>", "this is neither hexadecimal digits nor a dump, an array or base64"),
            ("NoSuchType", "00", "there is no type NoSuchType"),
        ):
            self.assertEqual(sentence, self.show(type_name, text))

    def test_the_filter_finds_parts(self) -> None:
        self.show(TYPE, MESSAGE.hex())
        self.find("#filter").send_keys("4711")
        self.assertEqual(["/pinNumber"], [row[1] for row in self.parts()])

    def test_axe_finds_no_barrier(self) -> None:
        self.assertEqual([], browser.barriers_of(self.browser, self.axe))
        for message in (CUT, PADDED, DAMAGED, MESSAGE + b"\0\0\0"):
            self.show(TYPE, message.hex())
            self.assertEqual([], browser.barriers_of(self.browser, self.axe))
        self.show("", self.capture().hex())
        self.find("#messages li:nth-child(3) button").click()
        self.assertEqual([], browser.barriers_of(self.browser, self.axe))

    def capture(self) -> bytes:
        """A call of a known program and its reply, a call of an unknown program, and one that is cut."""
        job = MESSAGE[4:12]
        messages = (packets.call(1, 4, job, PROGRAM), packets.reply(1, bytes(4)), packets.call(2, 4, MESSAGE, 100003),
                    packets.call(3, 4, job[:6], PROGRAM))
        return packets.pcap(packets.frames(map(packets.datagram, messages)))

    def test_a_message_of_a_capture_is_opened(self) -> None:
        with tempfile.NamedTemporaryFile(suffix=".pcap") as file:
            file.write(self.capture())
            file.flush()
            self.find("#file").send_keys(file.name)
            WebDriverWait(self.browser, 20).until(lambda _: self.find("#capture").is_displayed())
        self.assertEqual("a capture with 4 calls and replies; 2 calls have no reply", self.find("#status").text)
        self.find("#messages button").click()
        self.assertRegex(self.find("#status").text, "^message 1 of the capture: 8 bytes, decodes, 0 findings")
        self.assertEqual("JobId", self.find("#type").get_attribute("value"))
        keys = ActionChains(self.browser)
        keys.send_keys(Keys.ARROW_DOWN * 2, Keys.ENTER).perform()
        self.assertRegex(self.find("#status").text, "^message 3 of the capture, unknown program, the likeliest of ")
        self.assertEqual(MESSAGE.hex(), self.find("#message").get_attribute("value"))
        keys.send_keys(Keys.ARROW_DOWN, Keys.ENTER).perform()
        self.assertRegex(self.find("#status").text, "^message 4 of the capture: 6 bytes, refused at byte 4")
        self.find("#wanted").send_keys("unknown program")
        self.assertEqual(1, len(self.browser.find_elements(By.CSS_SELECTOR, "#messages button")))

    def test_paths_and_json_are_copied(self) -> None:
        self.show(TYPE, MESSAGE.hex())
        self.browser.execute_script("navigator.clipboard.writeText = async (text) => { window.copied = text; }")

        def copied(button: str) -> str:
            self.find(button).click()
            text: str = self.browser.execute_script("return window.copied")
            return text

        value = json.loads(copied("#copyJson"))
        self.assertEqual(inspected("decode", TYPE, MESSAGE), value)
        self.find("#bytes [data-segment='2']").click()
        self.assertEqual("/jobId/job", copied("#copyPath"))
        self.assertEqual(value["jobId"]["job"], json.loads(copied("#copyPart")))
        self.assertEqual(self.browser.current_url, copied("#copyLink"))

    def test_a_long_message_is_shown(self) -> None:
        command = [QUORVAXDR, "sample", "JobAVPSeq", "--extent", "most", "--limit", "65535", "--to", "raw"]
        message = subprocess.run(command, capture_output=True, check=True).stdout
        self.assertGreater(len(message), 65000)
        self.find("#type").send_keys("JobAVPSeq")
        taken = min(self.browser.execute_script("""
            document.getElementById("message").value = arguments[0];
            return [1, 2, 3].map(() => {
                const begin = performance.now();
                document.querySelector("#form button").click();
                document.body.getBoundingClientRect();
                return performance.now() - begin;
            });""", message.hex()))
        self.assertLess(taken, 1000)
        self.assertRegex(self.find("#status").text,
                         f"^read as hexadecimal digits: {len(message):,} bytes, decodes, 0 findings")
        print(f"{len(message):,} bytes are shown after {taken:.0f} ms")


unittest.main()
