// The message viewer: bytes beside parts. What the pointer is over, or what has the focus, is lit in both.
"use strict";

(() => {
    const rowSize = matchMedia("(max-width: 30rem)").matches ? 8 : 16;
    const mostUnfolded = 2000; // rows of the tree that a new message unfolds
    const mostChildren = 100;  // a longer array is folded at first
    const mostMatches = 500;
    const mostFindings = 200;
    const mostGuesses = 12;
    const mostLitBytes = 4096; // of a part that the pointer is over; a larger one is lit in the tree alone
    const mostCaptured = 64;   // MiB of a capture

    const types = new quorvaReader.Types(quorvaSchema);
    const at = (id) => document.getElementById(id);
    let tree = null;
    let rows = new Map();     // of the tree, by part
    let segments = [];        // of the bytes: {offset, size, node, element}
    let notes = new Map();    // sentences of the findings, by part
    let current = 0;          // the part that was chosen last
    let cursor = 0;           // the byte that was chosen last

    function element(name, content = "", className = "") {
        const made = document.createElement(name);
        made.textContent = content;
        if (className) made.className = className;
        return made;
    }

    // ---- The bytes --------------------------------------------------------------------------------------------------

    // For each byte the innermost part that holds it, or -1, and if it is padding.
    function ownersOf() {
        const owners = new Int32Array(tree.bytes.length).fill(-1), isPadding = new Uint8Array(tree.bytes.length);
        tree.nodes.forEach((node, i) => {
            owners.fill(i, node.offset, node.offset + node.size);
            if (node.contentsSize > 0 && node.complete)
                isPadding.fill(1, tree.contentsAt(i) + node.contentsSize, node.offset + node.size);
        });
        return {owners, isPadding};
    }

    function classOf(offset, {owners, isPadding}, marked) {
        const classes = [];
        if (isPadding[offset]) classes.push("padding");
        if (offset >= tree.length) classes.push(tree.stopped ? "undecoded" : "leftover");
        if (marked.has(offset)) classes.push(marked.get(offset));
        return classes.join(" ");
    }

    function showBytes(findings) {
        const marked = new Map(findings.map(({offset, code}) => [offset, code === "refused" ? "refusal" : "wrong"]));
        const map = ownersOf(), made = document.createDocumentFragment();
        segments = [];
        for (let begin = 0; begin < tree.bytes.length; begin += rowSize) {
            const end = Math.min(begin + rowSize, tree.bytes.length), row = element("div", "", "row");
            row.append(element("span", String(begin).padStart(6), "offset"));
            let characters = "";
            for (let offset = begin, open = null; offset < end; ++offset) {
                const byte = tree.bytes[offset], className = classOf(offset, map, marked), node = map.owners[offset];
                if (!open || open.node !== node || open.className !== className) {
                    open = {offset, size: 0, node, className, element: element("span", "", className), digits: []};
                    row.append(offset % 4 === 0 ? "  " : " ", open.element);
                    segments.push(open);
                    open.element.dataset.segment = segments.length - 1;
                }
                const gap = open.size === 0 ? "" : offset % 4 === 0 ? "  " : " ";
                open.digits.push(gap, byte.toString(16).padStart(2, "0"));
                ++open.size;
                open.element.textContent = open.digits.join("");
                characters += byte >= 0x20 && byte < 0x7F ? String.fromCharCode(byte) : ".";
            }
            const missing = begin + rowSize - end;
            const blanks = 3 * missing + Math.floor(missing / 4);
            row.append(element("span", " ".repeat(blanks + 2) + characters, "characters"));
            made.append(row);
        }
        if (tree.stopped && tree.stopped.offset === tree.bytes.length) { // no byte is left to mark
            const row = element("div", "", "row");
            row.append(element("span", String(tree.bytes.length).padStart(6), "offset"), "  ",
                element("span", "refused", "refusal"));
            made.append(row);
        }
        at("bytes").replaceChildren(made);
    }

    // ---- The tree ---------------------------------------------------------------------------------------------------

    const hasInside = (i) => tree.nodes[i].end > i + 1;

    function summaryOf(i) {
        const node = tree.nodes[i], text = tree.text(i);
        if (!node.use || !node.complete || node.contentsSize === 0) return text;
        const value = tree.json(i);
        return `${text}  ${typeof value === "string" ? JSON.stringify(value) : value.text || value.hex}`;
    }

    function rowOf(i, level) {
        const item = element("li"), line = element("div", "", "part");
        item.setAttribute("role", "treeitem");
        item.setAttribute("aria-level", level);
        item.tabIndex = -1;
        item.dataset.part = i;
        const kind = i === 0 ? tree.kindOf(i) : tree.nodes[i].declared || tree.kindOf(i);
        line.append(element("span", tree.nameOf(i), "name"), " ", element("span", summaryOf(i), "value"), " ",
            element("span", kind, "kind"));
        item.append(line);
        for (const note of notes.get(i) || []) item.append(element("p", note.text, note.className));
        rows.set(i, item);
        return item;
    }

    function unfold(item) {
        const i = Number(item.dataset.part);
        if (!hasInside(i) || item.getAttribute("aria-expanded") === "true") return;
        if (!item.querySelector("ul")) {
            const list = element("ul");
            list.setAttribute("role", "group");
            for (const inside of tree.inside(i)) {
                const child = rowOf(inside, Number(item.getAttribute("aria-level")) + 1);
                if (hasInside(inside)) child.setAttribute("aria-expanded", "false");
                list.append(child);
            }
            item.append(list);
        }
        item.setAttribute("aria-expanded", "true");
    }

    function fold(item) {
        if (item.getAttribute("aria-expanded") === "true") item.setAttribute("aria-expanded", "false");
    }

    // Unfolds what is inside, the outermost parts first, up to a number of rows; long arrays only if `all`.
    function unfoldInside(item, all) {
        const waiting = [item];
        for (let i = 0; i < waiting.length && (all || rows.size < mostUnfolded); ++i) {
            const next = waiting[i], node = tree.nodes[Number(next.dataset.part)];
            const isLong = quorvaReader.isArray(node.use) && node.number > mostChildren;
            if (isLong && !all) continue;
            unfold(next);
            const list = next.querySelector("ul");
            if (list) waiting.push(...list.children);
        }
    }

    function showTree() {
        rows = new Map();
        const root = rowOf(0, 1);
        root.tabIndex = 0;
        if (hasInside(0)) root.setAttribute("aria-expanded", "false");
        at("tree").replaceChildren(root);
        unfoldInside(root, false);
        return root;
    }

    // The row of a part; unfolds what is around it.
    function reveal(i) {
        const chain = [];
        for (let part = i; part !== 0; part = tree.nodes[part].parent) chain.unshift(part);
        let item = rows.get(0);
        for (const part of chain) {
            unfold(item);
            item = rows.get(part);
        }
        return item;
    }

    // Lists the parts whose path or value has the text.
    function filter(text) {
        const sought = text.trim().toLowerCase();
        if (sought === "") return showTree();
        rows = new Map();
        const matches = [];
        for (let i = 0; i < tree.nodes.length && matches.length < mostMatches; ++i)
            if (`${tree.pointer(i)} ${summaryOf(i)}`.toLowerCase().includes(sought)) matches.push(i);
        at("tree").replaceChildren(...matches.map((i) => {
            const item = rowOf(i, 1);
            item.querySelector(".name").textContent = tree.pointer(i) || tree.name;
            return item;
        }));
        const first = at("tree").firstElementChild;
        if (first) first.tabIndex = 0;
        at("place").textContent = matches.length === mostMatches ? `the first ${mostMatches} parts are listed`
            : `${matches.length} of ${tree.nodes.length} parts`;
        return first;
    }

    // ---- The part in question, lit in both --------------------------------------------------------------------------

    function light(i, withBytes = true) {
        for (const lit of document.querySelectorAll(".lit")) lit.classList.remove("lit");
        if (i === undefined || i < 0) return;
        let part = i; // a part that is folded away lights the one around it
        while (part !== 0 && !(rows.has(part) && rows.get(part).offsetParent)) part = tree.nodes[part].parent;
        if (rows.has(part)) rows.get(part).firstElementChild.classList.add("lit");
        const {offset, size} = tree.nodes[i];
        if (!withBytes && size > mostLitBytes) return;
        for (const segment of segments)
            if (segment.offset < offset + size && segment.offset + segment.size > offset)
                segment.element.classList.add("lit");
    }

    function describe(i) {
        const node = tree.nodes[i], type = types.byName.get(node.declared);
        const line = at("place"), last = node.offset + node.size - 1;
        line.textContent = `${tree.pointer(i) || "the whole value"}  ` +
            `${node.size === 0 ? `no bytes, at ${node.offset}` : `bytes ${node.offset}..${last}`}  `;
        if (!type) return;
        const link = element("a", type.name);
        link.href = `modules/${(type.module || "built-in").replaceAll("/", ".")}.html#${type.name}`;
        line.append(link, node.member && node.member.doc ? `  ${node.member.doc}` : `  ${type.doc || ""}`);
    }

    function choose(item, scrolls) {
        for (const row of at("tree").querySelectorAll("[tabindex='0']")) row.tabIndex = -1;
        current = Number(item.dataset.part);
        item.tabIndex = 0;
        light(current);
        describe(current);
        const first = segments.find((segment) => segment.offset + segment.size > tree.nodes[current].offset);
        if (scrolls && first) first.element.scrollIntoView({block: "nearest"});
    }

    function goTo(i) {
        if (at("filter").value !== "") {
            at("filter").value = "";
            showTree();
        }
        reveal(i).focus();
    }

    function moveInTree(event) {
        const item = event.target.closest("[role=treeitem]");
        if (!item) return;
        const shown = [...at("tree").querySelectorAll("[role=treeitem]")].filter((row) => row.offsetParent);
        const here = shown.indexOf(item), isOpen = item.getAttribute("aria-expanded") === "true";
        const around = item.parentElement.closest("[role=treeitem]");
        const targets = {
            ArrowDown: () => shown[here + 1],
            ArrowUp: () => shown[here - 1],
            Home: () => shown[0],
            End: () => shown.at(-1),
            ArrowRight: () => isOpen ? shown[here + 1] : unfold(item),
            ArrowLeft: () => isOpen ? fold(item) : around,
            Enter: () => isOpen ? fold(item) : unfold(item),
        };
        if (!targets[event.key]) return;
        event.preventDefault();
        const next = targets[event.key]();
        if (next) next.focus();
    }

    function segmentAt(offset) {
        return segments.find((segment) => offset >= segment.offset && offset < segment.offset + segment.size);
    }

    function moveInBytes(event) {
        const step = {ArrowRight: 1, ArrowLeft: -1, ArrowDown: rowSize, ArrowUp: -rowSize}[event.key];
        const segment = segmentAt(cursor);
        if (event.key === "Enter" && segment && segment.node >= 0) goTo(segment.node);
        if (!step) return;
        event.preventDefault();
        cursor = Math.max(0, Math.min(tree.bytes.length - 1, cursor + step));
        const next = segmentAt(cursor);
        if (!next) return;
        light(next.node);
        next.element.classList.add("lit");
        next.element.scrollIntoView({block: "nearest"});
        if (next.node >= 0) describe(next.node);
        else at("place").textContent = `byte ${cursor}: ${tree.stopped ? "not decoded" : "left over"}`;
    }

    // ---- Reading a message ------------------------------------------------------------------------------------------

    function showFindings(findings) {
        notes = new Map();
        for (const {node, code, sentence} of findings) {
            const isRefusal = code === "refused";
            const cause = isRefusal ? quorvaReader.likelyCause(tree) : "";
            const text = `${isRefusal ? "! refused" : code}: ${sentence}` + (cause && `; likely cause: ${cause}`);
            if (!notes.has(node)) notes.set(node, []);
            notes.get(node).push({text, className: isRefusal ? "refusal" : "wrong"});
        }
        at("findings").replaceChildren(...findings.slice(0, mostFindings).map((finding) => {
            const item = element("li"), button = element("button", `byte ${finding.offset}`);
            button.type = "button";
            button.addEventListener("click", () => goTo(finding.node));
            item.append(button, ` ${finding.path && `${finding.path}: `}${finding.code}: ${finding.sentence}`);
            return item;
        }));
    }

    function showGuesses(guesses) {
        at("guesses").replaceChildren(...guesses.slice(0, mostGuesses).map(({type, score}) => {
            const item = element("li"), button = element("button", type);
            button.type = "button";
            button.title = `${Math.round(score)} bits`;
            button.addEventListener("click", () => show(type, tree.bytes, `as ${type}`));
            item.append(button);
            return item;
        }));
    }

    function show(type, bytes, how) {
        tree = new quorvaReader.Tree(types, type, bytes);
        const findings = quorvaReader.findingsOf(tree);
        current = cursor = 0;
        at("type").value = type;
        at("filter").value = "";
        at("views").hidden = false;
        for (const id of ["copyLink", "copyJson"]) at(id).disabled = false;
        showFindings(findings);
        showBytes(findings);
        choose(showTree(), false);
        const most = findings.length > mostFindings ? `, the first ${mostFindings} are listed` : "";
        const verdict = tree.stopped ? `refused at byte ${tree.stopped.offset}` : "decodes";
        at("status").textContent = `${how}: ${quorvaReader.grouped(bytes.length)} bytes, ${verdict}, ` +
            `${findings.length} ${findings.length === 1 ? "finding" : "findings"}${most}`;
        history.replaceState(null, "", `#type=${type}&message=${quorvaInputs.toBase64(bytes)}`);
    }

    function complain(sentence) {
        at("status").textContent = sentence;
        at("views").hidden = true;
        at("findings").replaceChildren();
        at("guesses").replaceChildren();
        tree = null;
        for (const id of ["copyLink", "copyJson"]) at(id).disabled = true;
    }

    // Lists a capture. The type is that of arguments and results of unknown procedures; it may be empty.
    function showCapture(type, bytes) {
        if (type !== "" && !types.byName.has(type)) return complain(`there is no type ${type}`);
        return complain(captureList.show(bytes, type));
    }

    // Shows the argument or result of a message.
    function openMessage(message, {type, unknown}) {
        const {number, body, bodySize, refusal, cut} = message;
        const how = `message ${number} of the capture${cut && `, cut: ${cut}`}`;
        if (refusal !== "") return complain(`${how}: ${refusal}`);
        if (body.length === 0) return complain(`${how} has no ${message.isReply ? "result" : "argument"}`);
        if (bodySize > types.longestMessage)
            return complain(`${how}: ${quorvaReader.grouped(bodySize)} bytes are more than a message can have`);
        offer(body);
        return showOrGuess(type, body, unknown === "" ? how : `${how}, ${unknown}`);
    }

    // An empty type is guessed.
    function showOrGuess(type, bytes, how) {
        showGuesses([]);
        if (type !== "") return types.byName.has(type) ? show(type, bytes, how) : complain(`there is no type ${type}`);
        const {guesses, isCut} = quorvaGuess.guess(types, bytes);
        if (guesses.length === 0) return complain(`${how}: no type decodes all ${bytes.length} bytes`);
        show(guesses[0].type, bytes,
            `${how}, the likeliest of ${guesses.length} types that decode it${isCut ? " in time" : ""}`);
        return showGuesses(guesses);
    }

    // Puts a message into the field, where it can be shown as another type.
    function offer(bytes) {
        at("message").value = bytes.length > types.longestMessage ? "" : quorvaReader.hexDigits(bytes);
    }

    // Reads what `input` gives, {bytes, what}; `what` is empty for a link.
    function take(type, input, isTyped) {
        try {
            const {bytes, what} = input();
            if (!isTyped) offer(bytes);
            if (quorvaCaptureFile.isCapture(bytes)) return showCapture(type, bytes);
            const how = what === "" ? "from the link" : `read as ${what}`;
            if (bytes.length > types.longestMessage)
                return complain(`${bytes.length} bytes are more than a message can have`);
            return showOrGuess(type, bytes, how);
        } catch (error) {
            if (!(error instanceof quorvaInputs.InputError)) throw error;
            return complain(error.message);
        }
    }

    const takeText = (text) => take(at("type").value.trim(), () => quorvaInputs.readText(text), true);

    async function takeFile(file) {
        captureList.hide();
        if (file.size > mostCaptured << 20)
            return complain(`${file.name} is longer than ${mostCaptured} MiB, the most that is read of a capture`);
        const bytes = new Uint8Array(await file.arrayBuffer());
        if (bytes.length > 1 << 20 && !quorvaCaptureFile.isCapture(bytes))
            return complain(`${file.name} is longer than any message`);
        return take(at("type").value.trim(), () => quorvaInputs.readFile(bytes), false);
    }

    function takeFragment() {
        const fields = new URLSearchParams(location.hash.slice(1));
        if (!fields.has("message")) return;
        const input = () => quorvaInputs.readBase64(fields.get("message")) || quorvaInputs.readText("");
        take(fields.get("type") || "", () => ({...input(), what: ""}), false);
    }

    async function copy(text, what) {
        try {
            await navigator.clipboard.writeText(text);
            at("status").textContent = `${what} copied`;
        } catch {
            at("message").value = text; // without access to the clipboard, for the user to copy
            at("message").select();
            at("status").textContent = `${what} selected, to be copied`;
        }
    }

    const captureList = new quorvaCaptureList.CaptureList(quorvaSchema, types, openMessage);

    // ---- Events -----------------------------------------------------------------------------------------------------

    at("names").append(...[...types.byName.keys()].map((name) => {
        const option = element("option");
        option.value = name;
        return option;
    }));
    at("form").addEventListener("submit", (event) => {
        event.preventDefault();
        takeText(at("message").value);
    });
    at("file").addEventListener("change", () => at("file").files[0] && takeFile(at("file").files[0]));
    document.addEventListener("dragover", (event) => event.preventDefault());
    document.addEventListener("drop", (event) => {
        const text = event.dataTransfer.getData("text");
        event.preventDefault();
        if (event.dataTransfer.files[0]) takeFile(event.dataTransfer.files[0]);
        else if (text) takeText(at("message").value = text);
    });
    at("tree").addEventListener("keydown", moveInTree);
    at("tree").addEventListener("focusin", (event) => choose(event.target.closest("[role=treeitem]"), true));
    at("tree").addEventListener("click", (event) => {
        const item = event.target.closest("[role=treeitem]");
        if (!item) return;
        item.focus();
        if (item.getAttribute("aria-expanded") === "true") fold(item);
        else unfold(item);
    });
    at("tree").addEventListener("pointerover", (event) => {
        const item = event.target.closest("[role=treeitem]");
        if (item) light(Number(item.dataset.part), false);
    });
    at("bytes").addEventListener("keydown", moveInBytes);
    at("bytes").addEventListener("pointerover", (event) => {
        const {segment} = event.target.dataset;
        if (segment !== undefined) light(segments[segment].node);
    });
    at("bytes").addEventListener("click", (event) => {
        const {segment} = event.target.dataset;
        if (segment === undefined || segments[segment].node < 0) return;
        cursor = segments[segment].offset;
        goTo(segments[segment].node);
    });
    for (const id of ["bytes", "tree"]) at(id).addEventListener("pointerleave", () => light(current));
    at("filter").addEventListener("input", () => filter(at("filter").value));
    at("fold").addEventListener("click", () => rows.forEach(fold));
    at("unfold").addEventListener("click", () => rows.has(0) && unfoldInside(rows.get(0), true));
    at("copyPath").addEventListener("click", () => copy(tree.pointer(current), "path"));
    at("copyPart").addEventListener("click", () => copy(JSON.stringify(tree.json(current), null, 2), "part"));
    at("copyJson").addEventListener("click", () => copy(JSON.stringify(tree.json(), null, 2), "JSON"));
    at("copyLink").addEventListener("click", () => copy(location.href, "link"));
    window.addEventListener("hashchange", takeFragment);
    takeFragment();
})();
