// Guesses the type of a message among those that decode the whole of it.
//
// A type is the more likely the less its value could be chance: each known enumerator, presence, Boolean, discriminant,
// small number, length and padding saves some of the 32 bits of a unit; each finding costs 32.
"use strict";

const quorvaGuess = (() => {
    const unitBits = 32;
    const longest = 1500; // milliseconds
    const isSmall = (number) => number >= 0 && number < 65536;

    function savedBits(types, tree) {
        let bits = 0;
        for (const node of tree.nodes) {
            if (node.type && node.type.kind === "enum") bits += unitBits - Math.log2(node.type.enumerators.length);
            else if (node.type && node.type.name === "Boolean") bits += unitBits - 1;
            else if (node.type && !quorvaReader.isGroup(node) && isSmall(node.number)) bits += 8;
            else if (node.use && node.use.form === "optional") bits += unitBits - 1;
            else if (node.use && node.use.maximum !== undefined) bits += unitBits - Math.log2(node.use.maximum + 1);
            if (node.member && node.member.cases) bits += unitBits / 2; // the discriminant has an arm
            if (node.use && node.contentsSize > 0) bits += 8 * (node.size - node.contentsSize - 4) + node.contentsSize;
        }
        return bits - unitBits * quorvaReader.findingsOf(tree).length;
    }

    // The likely types, each {type, score}, and true if there was no time for all types.
    function guess(types, bytes) {
        const guesses = [], end = Date.now() + longest;
        let isCut = false;
        for (const [name, type] of types.byName) {
            if (type.kind === "built-in" || type.leastOnWire > bytes.length) continue;
            isCut = Date.now() > end;
            if (isCut) break;
            const tree = new quorvaReader.Tree(types, name, bytes);
            const isWhole = !tree.stopped && tree.length === bytes.length;
            if (isWhole) guesses.push({type: name, score: savedBits(types, tree)});
        }
        guesses.sort((a, b) => b.score - a.score || (a.type < b.type ? -1 : 1));
        return {guesses, isCut};
    }

    return {guess};
})();

if (typeof module !== "undefined") module.exports = quorvaGuess;
