// Searches the types by name, attribute number and enumerator. The types are loaded when the search is first used.
"use strict";

(() => {
    const root = document.currentScript.dataset.root;
    const mostShown = 60;

    const builtIn = "built-in";
    const pageOf = (type) => `${root}modules/${(type.module || builtIn).replaceAll("/", ".")}.html`;

    // Everything that can be found: {name, number, kind, isType, detail, lower, link}.
    function entriesOf(schema) {
        const entries = [];
        const add = (type, kind, name, number, anchor) => entries.push({
            name, number, kind, isType: anchor === type.name, detail: type.name, lower: name.toLowerCase(),
            link: `${pageOf(type)}#${anchor}`});
        for (const type of schema.types) {
            add(type, type.kind, type.name, null, type.name);
            entries.at(-1).detail = type.module || builtIn;
            for (const each of type.fields || []) add(type, "member", each.name, null, `${type.name}.${each.name}`);
            for (const each of type.enumerators || [])
                add(type, "enumerator", each.name, each.value, `${type.name}.${each.name}`);
            for (const each of type.arms || [])
                for (const value of each.cases)
                    add(type, "arm", each.name || "void", value, `${type.name}.${each.name || each.cases[0]}`);
        }
        return entries;
    }

    // A number is sought among attribute numbers and enumerators, anything else among the names: whole names first,
    // then their beginnings, then their middles; types before what they have.
    function search(entries, text) {
        if (text === "") return [];
        if (/^-?(0x[0-9a-f]+|\d+)$/i.test(text)) {
            const number = text.startsWith("-") ? -Number(text.slice(1)) : Number(text);
            return entries.filter((entry) => entry.number === number);
        }
        const sought = text.toLowerCase();
        const ranked = [];
        for (const entry of entries) {
            const at = entry.lower.indexOf(sought);
            if (at < 0) continue;
            const rank = entry.lower === sought ? 0 : at === 0 ? 2 : 4;
            ranked.push([rank + (entry.isType ? 0 : 1), entry]);
        }
        ranked.sort((a, b) => a[0] - b[0] || a[1].name.length - b[1].name.length);
        return ranked.map(([, entry]) => entry);
    }

    const input = document.getElementById("sought");
    const results = document.getElementById("results");
    const found = document.getElementById("found");
    let entries = null;

    function show() {
        if (!entries) return;
        const text = input.value.trim();
        const all = search(entries, text);
        results.replaceChildren(...all.slice(0, mostShown).map((entry) => {
            const item = document.createElement("li"), link = document.createElement("a");
            link.href = entry.link;
            link.textContent = entry.number === null ? entry.name : `${entry.name} = ${entry.number}`;
            item.append(link, ` ${entry.kind} · ${entry.detail}`);
            return item;
        }));
        const shown = Math.min(all.length, mostShown);
        found.textContent = text === "" ? "" : all.length === 0 ? "Nothing found"
            : shown < all.length ? `${shown} of ${all.length} shown` : `${all.length} found`;
    }

    function load() {
        if (entries || document.getElementById("types")) return;
        if (typeof quorvaSchema !== "undefined") {
            entries = entriesOf(quorvaSchema);
            return;
        }
        const script = document.createElement("script");
        script.id = "types";
        script.src = `${root}types.js`;
        script.onload = () => {
            entries = entriesOf(quorvaSchema);
            show();
        };
        document.head.append(script);
    }

    // The arrow keys go through the results.
    function move(event) {
        const step = {ArrowDown: 1, ArrowUp: -1}[event.key];
        if (event.key === "Escape") {
            input.value = "";
            input.focus();
            show();
        }
        if (!step) return;
        const stops = [input, ...results.querySelectorAll("a")];
        const next = stops[stops.indexOf(document.activeElement) + step];
        if (!next) return;
        event.preventDefault();
        next.focus();
    }

    document.getElementById("search").hidden = false;
    input.addEventListener("focus", load);
    input.addEventListener("input", () => {
        load();
        show();
    });
    document.getElementById("search").addEventListener("keydown", move);
})();
