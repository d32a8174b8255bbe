// Reads a message by the schema document (docs/schema.md): its parts with their bytes, what is wrong with it, and
// where and why a decode refuses it. It decides as the inspector does; a test compares both on messages of every type.
"use strict";

const quorvaReader = (() => {
    const deepestNesting = 512;
    const largestMaximum = 65535; // says nothing, so it is not shown
    const noName = "";

    // From the 32 bits of a unit to the number that an object holds, by the name of the built-in type.
    const numberOf = {
        Boolean: (unit) => unit & 0xFF,
        ShortNatural: (unit) => unit & 0xFF,
        ShortInteger: (unit) => unit << 24 >> 24,
        Integer: (unit) => unit << 16 >> 16,
        Natural: (unit) => unit & 0xFFFF,
        LongInteger: (unit) => unit | 0,
        LongNatural: (unit) => unit >>> 0,
        UINT: (unit) => unit >>> 0,
        Float: (unit) => unit >>> 0,
    };
    const rangeOf = {
        Boolean: [0, 255],
        ShortNatural: [0, 255],
        ShortInteger: [-128, 127],
        Integer: [-32768, 32767],
        Natural: [0, 65535],
        LongInteger: [-2147483648, 2147483647],
        LongNatural: [0, 4294967295],
        UINT: [0, 4294967295],
        Float: [0, 4294967295],
    };

    const padded = (size) => Math.ceil(size / 4) * 4;
    const grouped = (number) => String(number).replace(/\B(?=(\d{3})+$)/g, ",");
    const hexDigits = (bytes) => Array.from(bytes, (byte) => byte.toString(16).padStart(2, "0")).join("");
    const isBytes = (use) => use.form === "string" || use.form.endsWith("-opaque");
    const isGroup = (node) => node.type !== null && (node.type.kind === "struct" || node.type.kind === "union");
    const isArray = (use) => use !== null && use.form.endsWith("-array");

    // The schema with what readers look up: types by name, enumerators and arms by number.
    class Types {
        constructor(schema) {
            this.byName = new Map(schema.types.map((type) => [type.name, type]));
            this.longestMessage = schema.longestMessage;
            this.names = new Map();
            this.arms = new Map();
            for (const type of schema.types) {
                if (type.kind === "enum")
                    this.names.set(type, new Map(type.enumerators.map((each) => [each.value, each.name]).reverse()));
                if (type.kind === "union")
                    this.arms.set(type, new Map(type.arms.flatMap((arm) => arm.cases.map((value) => [value, arm]))));
            }
        }

        // The type at the end of a chain of typedefs that only give it another name.
        canonical(name) {
            let type = this.byName.get(name);
            while (type.target && type.target.form === "single") type = this.byName.get(type.target.type);
            return type;
        }

        enumeratorName(type, number) {
            return type.kind === "enum" ? this.names.get(type).get(number) : undefined;
        }

        // A number for people: "AKowner (1)", "true", "1.5", "-3".
        numberText(type, number) {
            if (type.name === "Boolean" && number <= 1) return number ? "true" : "false";
            if (type.name === "Float") return floatText(number);
            const name = this.enumeratorName(type, number);
            return name === undefined ? String(number) : `${name} (${number})`;
        }

        numberJson(type, number) {
            if (type.name === "Float") {
                const value = floatOf(number);
                return Number.isFinite(value) ? Number(floatText(number))
                    : {bits: number.toString(16).padStart(8, "0")};
            }
            if (type.name === "Boolean" && number <= 1) return number === 1;
            const name = this.enumeratorName(type, number);
            return name === undefined ? number : name;
        }
    }

    function floatOf(bits) {
        const view = new DataView(new ArrayBuffer(4));
        view.setUint32(0, bits);
        return view.getFloat32(0);
    }

    // The two decimal numbers of so many digits around an exact one, the nearer first; of two as near, the even one.
    function neighbours(exact, count) {
        const below = BigInt(exact.slice(0, count)), rest = exact.slice(count);
        const half = "5".padEnd(rest.length, "0");
        const isAbove = rest > half || (rest === half && below % 2n === 1n);
        return isAbove ? [below + 1n, below] : [below, below + 1n];
    }

    // The shortest decimal text that reads back as the same float; the plain form unless the scientific one is shorter.
    function floatText(bits) {
        const value = floatOf(bits), sign = bits >>> 31 ? "-" : "";
        if (Number.isNaN(value)) return `${sign}nan`;
        if (!Number.isFinite(value)) return `${sign}inf`;
        if (value === 0) return `${sign}0`;
        const size = Math.abs(value), [mantissa, power] = size.toExponential(100).split("e");
        const exact = mantissa.replace(".", "");
        for (let count = 1; ; ++count) {
            const exponent = Number(power) - count + 1; // of the last digit
            const readsBack = (digits) => Math.fround(Number(`${digits}e${exponent}`)) === size;
            const digits = neighbours(exact, count).find(readsBack);
            if (digits === undefined) continue;
            const carried = String(digits), kept = carried.replace(/0+$/, ""); // 9.9... becomes 10
            return sign + decimalText(kept, exponent + carried.length - kept.length, size);
        }
    }

    function decimalText(digits, exponent, size) {
        const power = exponent + digits.length - 1, sign = power < 0 ? "-" : "+";
        const scientific = `${digits[0]}${digits.length > 1 ? "." : ""}${digits.slice(1)}e${sign}` +
            String(Math.abs(power)).padStart(2, "0");
        const plain = exponent >= 0 ? digits + "0".repeat(exponent)
            : power >= 0 ? `${digits.slice(0, exponent)}.${digits.slice(exponent)}`
            : `0.${digits.padStart(-exponent, "0")}`;
        if (plain.length > scientific.length) return scientific;
        return exponent >= 0 ? String(size) : plain; // a whole number has all its digits
    }

    // A decode that stops. `why` has a sentence; `cut` is true if the message ends too early.
    class Refusal extends Error {
        constructor(reason, more = {}) {
            super(reason);
            Object.assign(this, {cut: false, discriminant: null}, more);
        }
    }

    const byteCount = (count) => count === 1 ? "1 byte" : count === 0 ? "no byte" : `${count} bytes`;

    class Reading {
        constructor(types, name, bytes) {
            this.types = types;
            this.bytes = bytes;
            this.view = new DataView(bytes.buffer, bytes.byteOffset, bytes.byteLength);
            this.position = 0;
            this.begin = 0; // of the unit or contents that is being read
            this.nodes = [];
            this.current = 0;
            this.path = []; // the open members and elements; null for the arm of a union, which nests one deeper
            this.stopped = null;
            try {
                this.within(null, name, 0, () => this.value(name));
            } catch (refusal) {
                if (!(refusal instanceof Refusal)) throw refusal;
                this.refuse(refusal);
            }
        }

        refuse(refusal) {
            const tokens = this.path.filter((token) => token !== null);
            if (refusal.discriminant !== null) tokens.push(refusal.discriminant);
            this.stopped = {
                path: tokens.map((token) => `/${token}`).join(""), offset: this.begin, reason: refusal.message,
                cut: refusal.cut, node: this.current,
            };
            while (this.nodes[0].end === 0) this.end();
        }

        within(member, declared, index, read) {
            this.nodes.push({
                member, declared, type: null, use: null, index, parent: this.current, end: 0, offset: this.position,
                size: 0, unit: 0, number: 0, contentsSize: 0, complete: false,
            });
            this.current = this.nodes.length - 1;
            read();
            this.nodes[this.current].complete = true;
            this.end();
        }

        end() {
            const node = this.nodes[this.current];
            node.end = this.nodes.length;
            node.size = this.position - node.offset;
            this.current = node.parent;
        }

        // The next unit. `numbered` makes its number of it.
        unit(numbered) {
            const left = this.bytes.length - this.position;
            if (left < 4) throw new Refusal(`${byteCount(left)} left where a unit of 4 is needed`, {cut: true});
            const unit = this.view.getUint32(this.position), node = this.nodes[this.current];
            this.position += 4;
            node.unit = unit;
            node.number = numbered(unit);
            return node.number;
        }

        number(type) {
            this.begin = this.position;
            return this.unit(type.kind === "enum" ? (unit) => unit | 0 : numberOf[type.name]);
        }

        value(name) {
            if (this.path.length > deepestNesting)
                throw new Refusal(`elements are nested deeper than ${deepestNesting} levels`);
            const type = this.types.byName.get(name);
            if (type.target) return this.use(type.target);
            this.nodes[this.current].type = type;
            switch (type.kind) {
            case "struct": return type.fields.forEach((field) => this.member(field));
            case "union": return this.union(type);
            case "foreign":
                throw new Refusal(`${type.name} is a type of another library, whose description is not here`);
            default: return this.number(type);
            }
        }

        member(member) {
            this.path.push(member.name);
            this.within(member, member.type || null, 0, () => this.use(member));
            this.path.pop();
        }

        union(type) {
            const discriminant = type.discriminant, canonical = this.types.canonical(discriminant.type);
            let value = 0;
            this.path.push(discriminant.name);
            this.begin = this.position;
            this.within(discriminant, discriminant.type, 0, () => {
                this.nodes[this.current].type = canonical;
                value = this.number(canonical);
            });
            this.path[this.path.length - 1] = null;
            const arm = this.types.arms.get(type).get(value);
            if (!arm && !type.hasDefault)
                throw new Refusal(
                    `${discriminant.name} ${this.types.numberText(canonical, value)} has no arm in ${type.name}`,
                    {discriminant: discriminant.name});
            if (arm && arm.form !== "void") this.member(arm);
            this.path.pop();
        }

        use(use) {
            this.begin = this.position;
            if (use.form === "single") return this.value(use.type);
            this.nodes[this.current].use = use;
            switch (use.form) {
            case "fixed-length-array": return this.elements(use.type, use.number);
            case "variable-length-array": return this.elements(use.type, this.count(use));
            case "optional":
                if (this.unit((unit) => Number((unit & 0xFF) === 1)))
                    this.within(null, use.type, 0, () => this.value(use.type));
                return undefined;
            case "string": {
                const length = this.unit((unit) => unit);
                if (length > use.maximum)
                    throw new Refusal(`length ${length} is beyond the maximum ${use.maximum}`);
                return this.contents(length);
            }
            case "variable-length-opaque": {
                const count = this.count(use);
                return count > 0 ? this.contents(count) : undefined;
            }
            default: return this.contents(use.number);
            }
        }

        elements(name, count) {
            for (let index = 0; index < count; ++index) {
                this.path.push(index);
                this.within(null, name, index, () => this.value(name));
                this.path.pop();
            }
        }

        count(use) {
            const count = this.unit((unit) => unit & 0xFFFF), {unit} = this.nodes[this.current];
            if (count > use.maximum)
                throw new Refusal(`count ${count} is beyond the maximum ${use.maximum}` +
                    (unit > 0xFFFF ? ` (the low 16 bits of ${unit})` : ""));
            return count;
        }

        contents(size) {
            this.begin = this.position;
            const left = this.bytes.length - this.position;
            if (left < size) throw new Refusal(`${byteCount(left)} left where ${size} are needed`, {cut: true});
            this.nodes[this.current].contentsSize = size;
            if (left < padded(size)) {
                this.position += size;
                throw new Refusal(`the message ends within the padding of ${byteCount(size)}`, {cut: true});
            }
            this.position += padded(size);
        }
    }

    // Bytes of the well-formed UTF-8 sequence at this place; 0 if there is none.
    function utf8SequenceLength(bytes, at) {
        const lead = bytes[at];
        const follows = (i, low = 0x80, high = 0xBF) => at + i < bytes.length && bytes[at + i] >= low &&
            bytes[at + i] <= high;
        if (lead < 0x80) return 1;
        if (lead >= 0xC2 && lead <= 0xDF) return follows(1) ? 2 : 0;
        if (lead >= 0xE0 && lead <= 0xEF)
            return follows(1, lead === 0xE0 ? 0xA0 : 0x80, lead === 0xED ? 0x9F : 0xBF) && follows(2) ? 3 : 0;
        if (lead >= 0xF0 && lead <= 0xF4)
            return follows(1, lead === 0xF0 ? 0x90 : 0x80, lead === 0xF4 ? 0x8F : 0xBF) && follows(2) && follows(3)
                ? 4 : 0;
        return 0;
    }

    // The offset of the first byte that is not UTF-8; the length if all is.
    function firstNotUtf8(bytes) {
        let at = 0;
        while (at < bytes.length) {
            const length = utf8SequenceLength(bytes, at);
            if (length === 0) break;
            at += length;
        }
        return at;
    }

    const utf8 = new TextDecoder("utf-8", {ignoreBOM: true});

    // A message that was read, up to its end or to the place where a decode fails.
    class Tree {
        constructor(types, name, bytes) {
            const reading = new Reading(types, name, bytes);
            Object.assign(this, {types, name, bytes, nodes: reading.nodes, length: reading.position});
            this.stopped = reading.stopped;
        }

        isElement(at) {
            return at !== 0 && isArray(this.nodes[this.nodes[at].parent].use);
        }

        isOptionalValue(at) {
            const {use} = this.nodes[this.nodes[at].parent];
            return at !== 0 && use !== null && use.form === "optional";
        }

        // The indices of the parts directly inside.
        *inside(at) {
            for (let i = at + 1; i < this.nodes[at].end; i = this.nodes[i].end) yield i;
        }

        // The path of a part as a JSON Pointer.
        pointer(at) {
            let path = "";
            for (let i = at; i !== 0; i = this.nodes[i].parent)
                if (!this.isOptionalValue(i))
                    path = `/${this.isElement(i) ? this.nodes[i].index : this.nodes[i].member.name}${path}`;
            return path;
        }

        depth(at) {
            let depth = 0;
            for (let i = at; i !== 0; i = this.nodes[i].parent) ++depth;
            return depth;
        }

        nameOf(at) {
            return at === 0 ? this.name : this.isOptionalValue(at) ? "value"
                : this.isElement(at) ? `[${this.nodes[at].index}]` : this.nodes[at].member.name;
        }

        kindOf(at) {
            const node = this.nodes[at];
            return node.type ? node.type.kind : node.use ? node.use.form : noName;
        }

        contentsAt(at) {
            const node = this.nodes[at];
            return node.offset + (node.use.form === "fixed-length-opaque" ? 0 : 4);
        }

        contents(at) {
            const begin = this.contentsAt(at);
            return this.bytes.subarray(begin, begin + this.nodes[at].contentsSize);
        }

        // What is shown beside a number, array, optional, string or opaque.
        text(at) {
            const node = this.nodes[at];
            if (node.size === 0 || isGroup(node)) return "";
            if (node.type) {
                const isUnknown = node.type.kind === "enum" &&
                    this.types.enumeratorName(node.type, node.number) === undefined;
                return this.types.numberText(node.type, node.number) + (isUnknown ? " (unknown)" : "");
            }
            if (!node.use) return "";
            const amount = (number, what) => {
                const most = node.use.maximum;
                return `${grouped(number)} ${what}${number === 1 ? "" : "s"}` +
                    (most > 0 && most < largestMaximum ? ` of at most ${grouped(most)}` : "");
            };
            if (node.use.form === "optional") return node.number ? "present" : "absent";
            return amount(node.use.number === undefined ? node.number : node.use.number,
                isArray(node.use) ? "element" : "byte");
        }

        // The JSON form of a part, as far as it was decoded.
        json(at = 0) {
            const node = this.nodes[at];
            if (isGroup(node)) {
                const object = {};
                for (const i of this.inside(at)) if (this.wasRead(i)) object[this.nodes[i].member.name] = this.json(i);
                return object;
            }
            if (node.type) return node.size > 0 ? this.types.numberJson(node.type, node.number) : null;
            if (!node.use) return null;
            if (isArray(node.use)) {
                const array = [];
                for (const i of this.inside(at)) if (this.wasRead(i)) array.push(this.json(i));
                return array;
            }
            if (node.use.form === "optional") return node.number && node.end > at + 1 ? this.json(at + 1) : null;
            if (!node.complete) return null;
            return node.use.form === "string" ? this.stringJson(at) : this.opaqueJson(at);
        }

        stringJson(at) {
            let contents = this.contents(at);
            const zero = contents.indexOf(0); // where the codec's strings end
            if (zero >= 0) contents = contents.subarray(0, zero);
            return firstNotUtf8(contents) === contents.length ? utf8.decode(contents) : {hex: hexDigits(contents)};
        }

        opaqueJson(at) {
            const contents = this.contents(at);
            const isPrintable = contents.length > 0 && contents.every((byte) => byte >= 0x20 && byte < 0x7F);
            return isPrintable ? {text: utf8.decode(contents)} : {hex: hexDigits(contents)};
        }

        // True if the reading got the part's value, or the beginning of one that has parts.
        wasRead(at) {
            const node = this.nodes[at];
            return node.complete || (node.size > 0 && !(node.use && isBytes(node.use)));
        }

        // A part as `quorvaxdr annotate --json` prints it.
        part(at) {
            const node = this.nodes[at], text = this.text(at);
            const part = {path: this.pointer(at), depth: this.depth(at), name: this.nameOf(at), kind: this.kindOf(at)};
            if (node.declared) part.type = node.declared;
            part.offset = node.offset;
            part.size = node.size;
            if (!isGroup(node) && !(node.use && node.use.type) && node.complete) part.value = this.json(at);
            if (text !== "") part.text = text;
            if (!node.complete) part.complete = false;
            return part;
        }

        // What `quorvaxdr annotate --json` prints.
        annotation() {
            const annotation = {
                type: this.name, size: this.bytes.length, nodes: this.nodes.map((_, at) => this.part(at)),
            };
            if (this.stopped) {
                const {path, offset, reason} = this.stopped, cause = likelyCause(this);
                annotation.refused = cause === "" ? {path, offset, reason} : {path, offset, reason, cause};
            } else if (this.length < this.bytes.length) {
                annotation.leftOver = {offset: this.length, size: this.bytes.length - this.length};
            }
            return annotation;
        }

        // The innermost part that holds a byte; undefined if there is none.
        partAt(offset) {
            let found;
            this.nodes.forEach((node, at) => {
                if (offset >= node.offset && offset - node.offset < node.size) found = at;
            });
            return found;
        }
    }

    class Examination {
        constructor(tree) {
            this.tree = tree;
            this.findings = [];
            tree.nodes.forEach((node, at) => {
                if (node.size > 0) this.examine(at, node);
            });
            const rest = tree.bytes.length - tree.length;
            if (!tree.stopped && rest > 0)
                this.add("left-over", 0, tree.length,
                    `${grouped(rest)} ${rest === 1 ? "byte is" : "bytes are"} left over after ${tree.name}`);
            this.findings.sort((a, b) => a.offset - b.offset);
        }

        add(code, node, offset, sentence) {
            this.findings.push({code, offset, sentence, node});
        }

        examine(at, node) {
            if (node.type && !isGroup(node)) this.examineNumber(at, node);
            if (node.type && node.type.kind === "struct") this.examineAttribute(at, node);
            if (!node.use) return;
            const {form} = node.use;
            if (form === "optional" && node.unit > 1)
                this.add("boolean-not-0-1", at, node.offset,
                    `the presence is ${node.unit}, decoded as ${node.number ? 1 : 0}`);
            if ((form === "variable-length-array" || form === "variable-length-opaque") && node.unit > 0xFFFF)
                this.add("count-cut", at, node.offset,
                    `count ${grouped(node.unit)}, decoded as ${grouped(node.unit & 0xFFFF)}`);
            if (node.contentsSize > 0) this.examineContents(at, node);
        }

        examineNumber(at, node) {
            const {types} = this.tree, {type, number, unit, offset} = node;
            if (type.kind === "enum") {
                if (types.enumeratorName(type, number) === undefined)
                    this.add("unknown-enumerator", at, offset, `${number} is not an enumerator of ${type.name}`);
            } else if (type.name === "Boolean") {
                if (unit > 1)
                    this.add("boolean-not-0-1", at, offset,
                        unit + (unit > 0xFF ? `, decoded as ${types.numberText(type, number)}` : ""));
            } else {
                const encoded = type.name === "ShortInteger" ? number & 0xFF : number >>> 0;
                if (encoded !== unit) this.add("value-cut", at, offset, Examination.cutText(node, encoded));
            }
        }

        static cutText({type, number, unit}, encoded) {
            const [least, most] = rangeOf[type.name];
            const sent = least < 0 ? unit | 0 : unit;
            const digits = (value) => value.toString(16).padStart(8, "0");
            if (sent === number) // other bits in front: ShortInteger has zeros there
                return `${digits(unit)}, decoded as ${number}, which an encode writes as ${digits(encoded)}`;
            return `${sent}, decoded as ${number}: a ${type.name} holds ${least} to ${most}`;
        }

        // A struct where a number is followed by a union whose discriminant repeats it.
        examineAttribute(at, node) {
            const {types} = this.tree, {fields} = node.type;
            const first = fields.findIndex((id, i) => {
                const value = fields[i + 1];
                if (!value || id.form !== "single" || value.form !== "single") return false;
                const union = types.canonical(value.type);
                return union.kind === "union" && union.discriminant.type === id.type;
            });
            if (first < 0) return;
            const members = [...this.tree.inside(at)], idAt = members[first], valueAt = members[first + 1];
            if (valueAt === undefined) return;
            const {nodes} = this.tree, id = nodes[idAt], discriminant = nodes[valueAt + 1];
            if (nodes[valueAt].end === valueAt + 1 || !discriminant.complete) return;
            if (id.number === discriminant.number) return;
            this.add("attribute-mismatch", idAt, id.offset,
                `${id.member.name} ${types.numberText(id.type, id.number)}, but the union has ` +
                `${discriminant.member.name} ${types.numberText(id.type, discriminant.number)}`);
        }

        examineContents(at, node) {
            const contents = this.tree.contents(at), begin = this.tree.contentsAt(at);
            if (node.use.form === "string") {
                const zero = contents.indexOf(0), wrong = firstNotUtf8(contents);
                if (zero >= 0)
                    this.add("text-holds-zero", at, begin + zero, `the string has ${grouped(contents.length)} bytes, ` +
                        `decoded up to the zero byte at ${grouped(zero)}`);
                else if (wrong < contents.length)
                    this.add("text-not-valid", at, begin + wrong, "the string is not UTF-8");
            }
            if (!node.complete) return; // the message ends within the padding
            const padding = this.tree.bytes.subarray(begin + contents.length, begin + padded(contents.length));
            if (padding.some((byte) => byte !== 0))
                this.add("padding-not-zero", at, begin + contents.length, `the padding is ${hexDigits(padding)}`);
        }
    }

    // What is wrong with the message, as `quorvaxdr validate --json` prints it; `node` is the part. A refusal is last.
    function findingsOf(tree) {
        const findings = new Examination(tree).findings.map((finding) =>
            ({code: finding.code, offset: finding.offset, path: tree.pointer(finding.node),
                sentence: finding.sentence, node: finding.node}));
        if (tree.stopped) {
            const {offset, path, reason, node} = tree.stopped;
            findings.push({code: "refused", offset, path, sentence: reason, node});
        }
        return findings;
    }

    // The outermost open array whose elements cannot fit in the message; null if there is none.
    function impossibleCount(tree) {
        let found = null;
        for (let at = tree.stopped.node; ; at = tree.nodes[at].parent) {
            const node = tree.nodes[at];
            if (node.use && node.use.form === "variable-length-array" && node.size > 0) {
                const needed = node.number * tree.types.byName.get(node.use.type).leastOnWire;
                const left = tree.bytes.length - node.offset - 4, path = tree.pointer(at);
                if (needed > left)
                    found = {offset: node.offset, sentence: `count ${grouped(node.number)}${path && ` of ${path}`} ` +
                        `needs at least ${grouped(needed)} bytes, ${grouped(left)} are left`};
            }
            if (at === 0) return found;
        }
    }

    // Why a message may be damaged that a decode refuses; empty if the place itself says all.
    function likelyCause(tree) {
        const [first] = new Examination(tree).findings, count = impossibleCount(tree);
        // A wrong length shifts all that follows: a count after it is a number from another place.
        const isShift = first && (first.code === "text-holds-zero" || first.code === "padding-not-zero");
        if (count && !(isShift && first.offset < count.offset)) return count.sentence;
        if (first) {
            const path = tree.pointer(first.node);
            return `byte ${first.offset}: ${path && `${path}: `}${first.sentence}` +
                (isShift ? "; the length before it may be wrong" : "");
        }
        if (!tree.stopped.cut) return "";
        const least = tree.types.byName.get(tree.name).leastOnWire;
        return "the message may have been cut" +
            (least > tree.bytes.length ? `: a ${tree.name} has at least ${grouped(least)} bytes` : "");
    }

    return {Types, Tree, findingsOf, likelyCause, isGroup, isArray, grouped, hexDigits};
})();

if (typeof module !== "undefined") module.exports = quorvaReader;
