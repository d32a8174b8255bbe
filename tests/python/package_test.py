"""What callers of the generated package get, beyond what messages of every type show: package_test.py."""

from __future__ import annotations

import math
import sys
import unittest
from typing import TYPE_CHECKING, Any, assert_type

import everything
from everything import AccessKind, AccessUnion, CodingError, Drive, JsonError, Locker, LockerIdSeq, LongNatural, Natural
from everything import Float, LockerId, Picture, Place, Self
from everything.locker import DoorLabel, Neighbour, PanelDoors

if TYPE_CHECKING:  # what type checkers know
    assert_type(Locker.decode(b"").right, Locker | None)
    assert_type(Place(1, 2, [], b"").encode(), bytes)
    assert_type(AccessKind.decode(b""), AccessKind | int)
    assert_type(LockerIdSeq.decode(b""), list[int])
    assert_type(LockerId.decode_prefix(b""), tuple[int, int])
    assert_type(Neighbour.from_json(None), Locker | None)
    assert_type(PanelDoors, int)


class Loading(unittest.TestCase):
    def test_loads_the_modules_that_are_used(self) -> None:
        self.assertIn("everything.locker", sys.modules)
        self.assertNotIn("everything.jobs.requests", sys.modules)

    def test_lists_and_suggests_names(self) -> None:
        self.assertIn("JobId", dir(everything))
        with self.assertRaisesRegex(AttributeError, "module 'everything' has no attribute 'JobIdd'"):
            getattr(everything, "JobIdd")


class Decoding(unittest.TestCase):
    def refused(self, coded: Any, message: bytes) -> CodingError:
        with self.assertRaises(CodingError) as caught:
            coded.decode(message)
        return caught.exception

    def test_refuses_what_is_left_over(self) -> None:
        error = self.refused(Natural, b"\0\0\0\5\0")
        self.assertEqual(str(error), "cannot decode Natural at byte 4 of 5: 1 byte is left over")
        self.assertEqual(Natural.decode_prefix(b"\0\0\0\5\0"), (5, 4))

    def test_names_the_place(self) -> None:
        error = self.refused(LockerIdSeq, bytes.fromhex("00000002 00000001 00"))
        self.assertEqual((error.type_name, error.path, error.offset), ("LockerIdSeq", "/1", 8))
        self.assertEqual(
            str(error), "cannot decode LockerIdSeq at /1, byte 8 of 9: 1 byte left where a unit of 4 is needed"
        )

    def test_refuses_messages_beyond_65535_bytes(self) -> None:
        error = self.refused(Picture, bytes(65536))
        self.assertEqual((error.offset, error.reason), (65535, "a message has at most 65535 bytes"))

    def test_refuses_what_nests_beyond_the_recursion_limit(self) -> None:
        error = self.refused(Self, bytes.fromhex("00000001") * 16383)
        self.assertEqual(error.reason, "values are nested deeper than Python's recursion limit allows")

    def test_accepts_any_bytes_like_object(self) -> None:
        for message in (bytearray(b"\0\0\0\5"), memoryview(b"\0\0\0\5")):
            self.assertEqual(Natural.decode(message), 5)

    def test_keeps_what_has_no_name(self) -> None:
        self.assertIs(AccessKind.decode(b"\0\0\0\1"), AccessKind.AKowner)
        self.assertEqual(repr(AccessKind.decode(b"\0\0\0\x63")), "99")
        self.assertEqual(DoorLabel.decode(b"\0\0\0\1\xe4\0\0\0"), "\udce4")


class Encoding(unittest.TestCase):
    def test_refuses_values_that_the_type_does_not_have(self) -> None:
        place = Place(1, 2, [0, 0], bytes(8))
        cases: list[tuple[Any, Any, str, int, str]] = [
            (Natural, 65536, "", 0, "expected a whole number from 0 to 65535, found 65536"),
            (Natural, "5", "", 0, 'expected a whole number from 0 to 65535, found "5"'),
            (Natural, 1 << 9999, "", 0, "expected a whole number from 0 to 65535, found a number of more than 64 bits"),
            (Float, 1e39, "", 0, "the number 1e+39 is beyond the largest Float"),
            (Float, None, "", 0, "expected a number, found null"),
            (DoorLabel, "a\0", "", 0, "a string cannot hold a zero byte"),
            (DoorLabel, "\ud800", "", 0, "the string is not Unicode: it has a single surrogate"),
            (DoorLabel, 41 * "a", "", 0, "length 41 is beyond the maximum 40"),
            (DoorLabel, b"a", "", 0, "expected a string, found a value of the type bytes"),
            (Picture, "a", "", 0, 'expected bytes, found "a"'),
            (LockerIdSeq, 7 * [1], "", 0, "count 7 is beyond the maximum 6"),
            (LockerIdSeq, {1}, "", 0, "expected an array of at most 6 LockerId, found a value of the type set"),
            (LockerIdSeq, [1, -1], "/1", 8, "expected a whole number from 0 to 4294967295, found -1"),
            (Neighbour, 5, "", 4, "expected an object of Locker, found 5"),
            (AccessUnion, AccessUnion(AccessKind.AKowner), "/owner", 4, "expected a string, found null"),
            (AccessUnion, AccessUnion(AccessKind.AKnobody, "a"), "/kind", 0, "kind AKnobody (0) has no contents"),
            (AccessUnion, AccessUnion(7), "/kind", 0, "kind 7 has no arm in AccessUnion"),
            (Drive, Drive(2), "/powered", 0, "powered 2 has no arm in Drive"),
        ]
        place.lamps = [1]
        cases.append((Place, place, "/lamps", 8, "expected an array of exactly 2 LampColour, found 1"))
        for coded, value, path, offset, reason in cases:
            with self.subTest(reason), self.assertRaises(CodingError) as caught:
                coded.encode(value)
            self.assertEqual((caught.exception.path, caught.exception.offset), (path, offset))
            self.assertEqual(caught.exception.reason, reason)

    def test_writes_1024_bytes_unless_more_are_allowed(self) -> None:
        with self.assertRaisesRegex(CodingError, "byte 4 of 1024: the message is longer than the limit of 1024 bytes"):
            Picture.encode(bytes(1021))
        self.assertEqual(len(Picture.encode(bytes(1021), 65535)), 1028)
        self.assertEqual(len(Picture.encode(bytes(1020))), 1024)

    def test_names_the_arm(self) -> None:
        self.assertEqual(AccessUnion(AccessKind.AKshift, [1]).arm, "members")
        self.assertIsNone(AccessUnion(AccessKind.AKnobody).arm)
        self.assertIsNone(AccessUnion(7).arm)

    def test_keeps_the_bits_of_floats(self) -> None:
        for bits in ("7f800001", "ffc12345", "80000000", "7f800000", "00000001"):
            self.assertEqual(Float.encode(Float.decode(bytes.fromhex(bits))).hex(), bits)
        self.assertEqual(Float.encode(math.nan).hex(), "7fc00000")


class FromJson(unittest.TestCase):
    def test_refuses_arrays_of_other_lengths(self) -> None:
        with self.assertRaisesRegex(JsonError, "/lamps: expected an array of exactly 2 LampColour, found 1"):
            Place.from_json({"row": 1, "column": 2, "lamps": [0], "mark": {"text": "abcdefgh"}})

    def test_refuses_what_nests_beyond_the_recursion_limit(self) -> None:
        json: Any = None
        for _ in range(5000):
            json = {"my": json, "late": None}
        with self.assertRaisesRegex(JsonError, "nested deeper than Python's recursion limit"):
            Self.from_json(json)


if __name__ == "__main__":
    unittest.main()
