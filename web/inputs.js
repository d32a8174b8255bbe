// Reads a message from a text: hexadecimal digits, a dump, an array of C or similar languages, or base64.
"use strict";

const quorvaInputs = (() => {
    class InputError extends Error {}

    function fail(line, sentence) {
        throw new InputError(line === null ? sentence : `line ${line + 1}: ${sentence}`);
    }

    const longestText = 1 << 20; // no message takes more in any form

    function append(bytes, more) {
        for (const byte of more) bytes.push(byte);
    }

    const bytesOfDigits = (digits) => Uint8Array.from(digits.match(/../g) || [], (pair) => parseInt(pair, 16));

    // ---- Dumps: an offset, bytes, and perhaps the same bytes as characters ------------------------------------------

    const rowForm = /^(0x)?([0-9a-f]{4,16})(:?)(\s*)(.*)$/i;

    // {offset digits, hasColon, rest} of each line; null if the text is no dump.
    function rowsOf(text) {
        const rows = [];
        for (const [number, line] of text.split("\n").entries()) {
            if (/^\s*(#|\/\/|$)/.test(line)) continue;
            if (line.trim() === "*" && rows.length > 0) {
                rows.push({number, isRepeat: true});
                continue;
            }
            const form = rowForm.exec(line.trim());
            if (!form || (form[5] !== "" && form[4] === "")) return null;
            rows.push({number, offset: form[2], hasColon: form[3] !== "", gap: form[4].length, rest: form[5]});
        }
        const first = rows[0];
        if (!first || first.rest === "") return null;
        const isOne = rows.length === 1;
        const hasPairs = /^([0-9a-f]{2}\s+)*[0-9a-f]{2}\b/i.test(first.rest);
        if (!first.hasColon && first.gap < 2 && (isOne || !hasPairs)) return null;
        return rows;
    }

    // The digits of a row: up to the characters, which follow two blanks or a bar.
    function digitsOf(row) {
        const bytes = row.rest.split("|")[0];
        const end = row.hasColon ? bytes.search(/\s{2,}/) : -1;
        const groups = (end < 0 ? bytes : bytes.slice(0, end)).trim().split(/\s+/);
        const isGroup = (group) => /^([0-9a-f]{2})+$/i.test(group) && (row.hasColon || group.length === 2);
        const wrong = groups.findIndex((group) => !isGroup(group));
        return (wrong < 0 ? groups : groups.slice(0, wrong)).join("");
    }

    function bytesOfDump(rows, base) {
        const bytes = [];
        const start = parseInt(rows[0].offset, base);
        let previous = [], repeatAt = null;
        for (const row of rows) {
            if (row.isRepeat) {
                repeatAt = row.number;
                continue;
            }
            if (base < 16 && !(base === 8 ? /^[0-7]+$/ : /^\d+$/).test(row.offset)) return null;
            const offset = parseInt(row.offset, base) - start;
            if (repeatAt !== null) {
                if (previous.length === 0 || offset > 1 << 20) fail(repeatAt, "the repeated lines have no end");
                while (bytes.length + previous.length <= offset) append(bytes, previous);
                repeatAt = null;
            }
            if (offset !== bytes.length) return null;
            if (row.rest === "") continue;
            previous = bytesOfDigits(digitsOf(row));
            if (previous.length === 0) fail(row.number, "no bytes follow the offset");
            append(bytes, previous);
        }
        if (repeatAt !== null) fail(repeatAt, "no line follows \"*\" to tell how often it repeats");
        return Uint8Array.from(bytes);
    }

    function readDump(text) {
        const rows = rowsOf(text);
        if (!rows) return null;
        const isOd = !rows[0].hasColon && rows[0].offset.length === 7; // its offsets are octal or decimal
        const fitting = (isOd ? [8, 10] : [16, 10]).map((base) => bytesOfDump(rows, base)).filter(Boolean);
        if (fitting.length > 1 && isOd && fitting[0].length !== fitting[1].length)
            fail(null, "the offsets can be octal or decimal; use `od -v -A x -t x1`");
        if (fitting.length > 0) return {bytes: fitting[0], what: "a dump"};
        return rows[0].hasColon ? fail(null, "the offsets of the dump do not fit its bytes") : null;
    }

    // ---- Other texts ------------------------------------------------------------------------------------------------

    const withoutComments = (text) => text.replace(/\/\*[^]*?\*\/|(\/\/|#).*$/gm, " ");

    function readArray(text) {
        const list = /^[^{[]*(?:\[\d*\]\s*=\s*)?[{[]([^{}[\]]*)[}\]][^{}[\]]*$/.exec(withoutComments(text));
        if (!list || !/0x|,/i.test(list[1])) return null;
        const bytes = list[1].split(/[\s,]+/).filter((item) => item !== "").map((item) => {
            const value = /^(0x[0-9a-f]{1,2}|\d{1,3})$/i.test(item) ? Number(item) : 256;
            return value < 256 ? value : fail(null, `"${item.slice(0, 20)}" is not a byte`);
        });
        return {bytes: Uint8Array.from(bytes), what: "an array"};
    }

    function readDigits(text) {
        const digits = withoutComments(text).replace(/0x|\\x|[\s,:;_-]/gi, "");
        if (digits === "" || !/^[0-9a-f]+$/i.test(digits)) return null;
        if (digits.length % 2 !== 0) fail(null, "the number of hexadecimal digits is odd");
        return {bytes: bytesOfDigits(digits), what: "hexadecimal digits"};
    }

    function readBase64(text) {
        const letters = text.replace(/\s/g, "").replace(/-/g, "+").replace(/_/g, "/");
        if (!/^[A-Za-z0-9+/]+={0,2}$/.test(letters)) return null;
        const body = letters.replace(/=+$/, "");
        if (body.length % 4 === 1) return null;
        return {bytes: Uint8Array.from(atob(body), (letter) => letter.charCodeAt(0)), what: "base64"};
    }

    // The bytes of a text, and what it was recognised as. Throws an InputError.
    function readText(text) {
        if (text.length > longestText) fail(null, "the text is longer than that of any message");
        if (text.trim() === "") fail(null, "the message is empty");
        for (const read of [readDump, readArray, readDigits, readBase64]) {
            const found = read(text);
            if (found) return found;
        }
        return fail(null, "this is neither hexadecimal digits nor a dump, an array or base64");
    }

    // The bytes of a file: it holds them as they are, or as a text.
    function readFile(bytes) {
        const isText = bytes.every((byte) => (byte >= 0x20 && byte < 0x7F) || byte === 9 || byte === 10 || byte === 13);
        if (isText && bytes.length > 0) return readText(new TextDecoder().decode(bytes));
        return {bytes, what: "bytes"};
    }

    // For links: base64 with the alphabet for URLs.
    function toBase64(bytes) {
        let text = "";
        for (const byte of bytes) text += String.fromCharCode(byte);
        return btoa(text).replace(/\+/g, "-").replace(/\//g, "_").replace(/=+$/, "");
    }

    return {InputError, readText, readFile, readBase64, toBase64};
})();

if (typeof module !== "undefined") module.exports = quorvaInputs;
