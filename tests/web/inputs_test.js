// Reads bytes by chance in the forms that tools write: node inputs_test.js INPUTS
"use strict";

const {execFileSync} = require("node:child_process");
const path = require("node:path");

const inputs = require(path.resolve(process.argv[2]));
const each = 60;

const digits = (bytes) => bytes.toString("hex");
const run = (command, ...options) => (bytes) => execFileSync(command, options, {input: bytes}).toString();

// The characters of a dump, among which may be digits.
const characters = (bytes) => bytes.toString("latin1").replace(/[^ -~]/g, ".");

// A dump in lines of 16 bytes.
const lines = (line) => (bytes) => {
    let text = "";
    for (let at = 0; at < bytes.length; at += 16) text += line(at, bytes.subarray(at, at + 16));
    return text;
};
const groups = (bytes, size) => digits(bytes).replace(new RegExp(`(.{${2 * size}})(?!$)`, "g"), "$1 ");
const offset = (at, places) => at.toString(16).padStart(places, "0");

const forms = {
    "od -A x -t x1": run("od", "-A", "x", "-t", "x1"),
    "od -v -t x1": run("od", "-v", "-t", "x1"),
    "od -v -A d -t x1": run("od", "-v", "-A", "d", "-t", "x1"),
    "base64": run("base64"),
    "base64 for links": inputs.toBase64,
    "xxd": lines((at, row) => `${offset(at, 8)}: ${groups(row, 2).padEnd(39)}  ${characters(row)}\n`),
    "hexdump -C": lines((at, row) => `${offset(at, 8)}  ${groups(row.subarray(0, 8), 1).padEnd(23)}  ` +
        `${groups(row.subarray(8), 1).padEnd(23)}  |${characters(row)}|\n`),
    "tcpdump -x": lines((at, row) => `\t0x${offset(at, 4)}:  ${groups(row, 2)}\n`),
    "xxd -i": (bytes) =>
        `unsigned char m[] = {\n  ${[...bytes].map((byte) => `0x${offset(byte, 2)}`).join(", ")}\n};\n` +
        `unsigned int m_len = ${bytes.length};\n`,
    "Python": (bytes) => `[${[...bytes].join(", ")},]`,
    "plain": digits,
    "units": (bytes) => groups(bytes, 4),
    "colons": (bytes) => groups(bytes, 1).replace(/ /g, ":").toUpperCase(),
    "escapes": (bytes) => [...bytes].map((byte) => `\\x${offset(byte, 2)}`).join(""),
    "comments": (bytes) => `# first\n${digits(bytes)} // last\n`,
};

// The same numbers in each run.
let state = 1;
const below = (limit) => (state = (state * 48271) % 2147483647) % limit;

let different = 0, read = 0;
for (const [name, write] of Object.entries(forms))
    for (let i = 0; i < each; ++i) {
        const size = i < 3 ? 4 + 100 * i : 4 * (1 + below(60)), most = [2, 256, 128, 1][i % 4];
        const bytes = Buffer.from(Array.from({length: size}, () => below(most)));
        if (name.startsWith("base64")) bytes[0] = 0x40; // "Q": a text of hexadecimal digits alone would not be base64
        const text = write(bytes);
        ++read;
        let found = "";
        try {
            found = digits(Buffer.from(inputs.readText(text).bytes));
        } catch (error) {
            if (!(error instanceof inputs.InputError)) throw error;
            found = error.message;
        }
        if (found !== digits(bytes) && ++different < 20) console.log(`${name}: ${found}\n${text}`);
    }
console.log(`${read} texts in ${Object.keys(forms).length} forms, ${different} differences`);
process.exitCode = different === 0 ? 0 : 1;
