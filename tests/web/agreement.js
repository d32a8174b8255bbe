// Holds the reader of the pages against the inspector: node agreement.js READER < LINES
//
// Reads what `wireshark_messages --annotated` prints: the schema document, then messages with what `annotate --json`
// and `validate --json` print of them.
"use strict";

const path = require("node:path");
const readline = require("node:readline");
const {isDeepStrictEqual} = require("node:util");

const reader = require(path.resolve(process.argv[2]));
const mostDifferences = 20;

// The first difference of two JSON values, or null.
function difference(found, expected, where = "") {
    if (isDeepStrictEqual(found, expected)) return null;
    if (typeof found === "object" && typeof expected === "object" && found && expected)
        for (const key of new Set([...Object.keys(expected), ...Object.keys(found)])) {
            const inside = difference(found[key], expected[key], `${where}/${key}`);
            if (inside) return inside;
        }
    return `${where}: ${JSON.stringify(found)}, expected ${JSON.stringify(expected)}`;
}

async function main() {
    let types = null, messages = 0, parts = 0, findings = 0, refused = 0, differences = 0;
    const seen = new Set();
    for await (const line of readline.createInterface({input: process.stdin})) {
        const expected = JSON.parse(line);
        if (!types) {
            types = new reader.Types(expected);
            continue;
        }
        const {type, message} = expected;
        const tree = new reader.Tree(types, type, new Uint8Array(Buffer.from(message, "hex")));
        const found = {
            type, message, annotation: tree.annotation(),
            findings: reader.findingsOf(tree).map(({code, offset, path: place, sentence}) =>
                ({code, offset, path: place, sentence})),
        };
        seen.add(type);
        ++messages;
        parts += tree.nodes.length;
        findings += found.findings.length;
        refused += Number(tree.stopped !== null);
        const first = difference(found, expected);
        if (first && ++differences <= mostDifferences)
            console.log(`${type} ${message.slice(0, 200)}: ${first.slice(0, 400)}`);
    }
    console.log(`${seen.size} types, ${messages} messages, ${refused} of them refused, ${parts} parts, ` +
        `${findings} findings, ${differences} differences`);
    process.exitCode = messages > 0 && refused > 0 && differences === 0 ? 0 : 1;
}

main();
