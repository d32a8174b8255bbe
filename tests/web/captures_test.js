// Holds the reading of captures in the pages against the inspector: node captures_test.js SITE SCHEMA CAPTURES
//
// SCHEMA is the schema document with the program whose calls the captures have; record.sh has written CAPTURES.
"use strict";

const fs = require("node:fs");
const path = require("node:path");
const vm = require("node:vm");

const [site, schemaFile, folder] = process.argv.slice(2);
const longest = 60; // seconds, on a machine that is busy
const mostDifferences = 20;
const scripts = ["types", "reader", "capture_file", "packets", "records", "streams", "calls"];
for (const script of scripts) vm.runInThisContext(fs.readFileSync(path.join(site, `${script}.js`), "utf8"));

/* global quorvaCalls, quorvaReader, quorvaEnvelopes */
const schema = JSON.parse(fs.readFileSync(schemaFile, "utf8"));
const types = new quorvaReader.Types(schema), envelopes = new quorvaReader.Types(quorvaEnvelopes);
const procedures = new quorvaCalls.Procedures(schema.modules);

// A note of the inspector or of the pages, without the words of libpcap for a damage.
const plain = (note) => note.replace(/^quorvaxdr: standard input: /, "")
    .replace(/^(not a capture|after packet \d+|packets of the link type).*/, "$1");
const linesOf = (file) => fs.readFileSync(file, "utf8").split("\n").slice(0, -1);

function textOf({number, time, flow, transport, rest, problems}) {
    const place = `${number.padStart(6)} ${time.padStart(12)}`;
    return [place, flow, transport, ...rest, ...problems.map((each) => `! ${each}`)].join("  ");
}

let lines = 0, problems = 0, damaged = 0, differences = 0, slowest = 0;
const captures = fs.readdirSync(folder).filter((name) => name.endsWith(".pcap"));
for (const name of captures) {
    const file = path.join(folder, name), usual = name.split(".")[1], begin = Date.now();
    const {start, events, notes, error} = quorvaCalls.readCapture(new Uint8Array(fs.readFileSync(file)), envelopes);
    const listed = events.map((event) => quorvaCalls.lineOf(event, {types, procedures, usual, start}));
    slowest = Math.max(slowest, (Date.now() - begin) / 1000);
    const found = [...listed.map(textOf), ...[error, notes].filter(Boolean).map(plain)];
    const expected = [...linesOf(`${file}.lines`), ...linesOf(`${file}.notes`).map(plain)];
    lines += listed.length;
    problems += listed.filter((line) => line.problems.length > 0).length;
    damaged += Number(error !== "");
    const first = Array.from({length: Math.max(found.length, expected.length)}, (_, i) => i)
        .find((i) => found[i] !== expected[i]);
    if (first !== undefined && ++differences <= mostDifferences)
        console.log(`${name}, line ${first + 1}: ${found[first]}\n    expected: ${expected[first]}`);
}
console.log(`${captures.length} captures, ${damaged} damaged files, ${lines} lines, ${problems} with problems, ` +
    `${differences} differences, the slowest after ${slowest.toFixed(1)} s`);
const isTested = captures.length > 0 && damaged > 0 && problems > 0;
process.exitCode = isTested && differences === 0 && slowest < longest ? 0 : 1;
