// The packets of a pcap or pcapng file. What is refused is what libpcap refuses.
"use strict";

const quorvaCaptureFile = (() => {
    const second = 1_000_000_000n;         // in nanoseconds, the unit of all times, which are since 1970-01-01 UTC
    const farthestSecond = 1n << 48n;
    const longestPacket = 262144;
    const longestBlock = 16 << 20;
    const longestSectionHeader = 1 << 20;
    const mostExponent = {binary: 63, decimal: 19}; // of the units of a second in which an interface counts

    // What packets begin with, by the numbers in files.
    const linkTypes = new Map([
        [0, "loopback"], [1, "ethernet"], [12, "raw"], [101, "raw"], [108, "loopback"], [113, "cooked"],
        [228, "raw"], [229, "raw"], [276, "cooked2"],
    ]);

    class CaptureError extends Error {}

    const hasBytes = (bytes, at, ...expected) => expected.every((byte, i) => bytes[at + i] === byte);
    const inEitherOrder = (bytes, at, a, b, c, d) =>
        hasBytes(bytes, at, a, b, c, d) || hasBytes(bytes, at, d, c, b, a);

    // True if the bytes begin as a capture.
    function isCapture(bytes) {
        if (inEitherOrder(bytes, 0, 0xA1, 0xB2, 0xC3, 0xD4) || inEitherOrder(bytes, 0, 0xA1, 0xB2, 0x3C, 0x4D))
            return bytes.length >= 24;
        return hasBytes(bytes, 0, 0x0A, 0x0D, 0x0D, 0x0A) && inEitherOrder(bytes, 8, 0x1A, 0x2B, 0x3C, 0x4D);
    }

    function linkOf(number) {
        const link = linkTypes.get(number);
        if (link === undefined) throw new CaptureError(`packets of the link type ${number} are not read`);
        return link;
    }

    // Bytes that are kept of a packet; a number that no int holds says nothing.
    const keptOf = (number) => number === 0 || number > 0x7FFFFFFF ? longestPacket : number;

    function timeOf(seconds, nanoseconds) {
        const clamped = seconds < -farthestSecond ? -farthestSecond
            : seconds > farthestSecond ? farthestSecond : seconds;
        return clamped * second + nanoseconds;
    }

    // A file, of which the next bytes are taken.
    class Source {
        constructor(bytes) {
            this.bytes = bytes;
            this.view = new DataView(bytes.buffer, bytes.byteOffset, bytes.byteLength);
            this.position = 0;
            this.isLittle = true;
        }

        number16(at) {
            return this.view.getUint16(at, this.isLittle);
        }

        number32(at) {
            return this.view.getUint32(at, this.isLittle);
        }

        number64(at) {
            return this.view.getBigUint64(at, this.isLittle);
        }

        // Where the next `size` bytes are.
        take(size, what) {
            const at = this.position, left = this.bytes.length - at;
            if (left < size) throw new CaptureError(`the file ends within ${what}: ${left} of ${size} bytes`);
            this.position += size;
            return at;
        }

        isAtEnd() {
            return this.position === this.bytes.length;
        }
    }

    class Pcap {
        constructor(source) {
            this.source = source;
            source.isLittle = source.bytes[0] !== 0xA1;
            const at = source.take(24, "its header");
            const version = `${source.number16(at + 4)}.${source.number16(at + 6)}`;
            if (version !== "2.4" && version !== "543.0")
                throw new CaptureError(`version ${version} of pcap is not read`);
            this.fraction = source.number32(at) === 0xA1B23C4D ? 1n : 1000n; // nanoseconds
            this.kept = keptOf(source.number32(at + 16));
            this.link = source.number32(at + 20) & 0x03FFFFFF;
        }

        next() {
            const {source} = this;
            if (source.isAtEnd()) return null;
            const head = source.take(16, "the header of a packet");
            const seconds = BigInt(source.number32(head) | 0), fraction = BigInt(source.number32(head + 4) | 0);
            const captured = source.number32(head + 8), size = source.number32(head + 12);
            if (captured > longestPacket)
                throw new CaptureError(`a packet of ${captured} bytes is beyond the maximum ${longestPacket}`);
            const at = source.take(captured, "a packet"), kept = Math.min(captured, this.kept);
            return {
                time: timeOf(seconds, fraction * this.fraction), bytes: source.bytes.subarray(at, at + kept),
                size: Math.max(size, kept),
            };
        }
    }

    const sectionBlock = 0x0A0D0D0A, interfaceBlock = 1, oldPacketBlock = 2, simplePacketBlock = 3, packetBlock = 6;

    class Pcapng {
        constructor(source) {
            this.source = source;
            source.isLittle = source.bytes[8] === 0x4D;
            this.link = null;
            const length = source.number32(4);
            if (length < 28 || length > longestSectionHeader)
                throw new CaptureError(`a section header of ${length} bytes`);
            source.take(length, "its section header");
            this.readSection({at: 8, end: length - 4});
            for (let block = this.nextBlock(); this.interfaces.length === 0; block = this.nextBlock()) {
                if (!block || [oldPacketBlock, simplePacketBlock, packetBlock].includes(block.kind))
                    throw new CaptureError("it has no interface before the first packet");
                if (block.kind === interfaceBlock) this.readInterface(block);
                if (this.interfaces.length > 0) break;
            }
        }

        // {kind, at, end} of the contents of the next block, or null at the end.
        nextBlock() {
            const {source} = this;
            if (source.isAtEnd()) return null;
            const head = source.take(8, "a block"), length = source.number32(head + 4);
            if (length < 12 || length > longestBlock || length % 4 !== 0)
                throw new CaptureError(`a block of ${length} bytes`);
            const at = source.take(length - 8, "a block"), end = at + length - 12;
            if (source.number32(end) !== length) throw new CaptureError("the two lengths of a block differ");
            return {kind: source.number32(head), at, end};
        }

        readSection({at, end}) {
            const {source} = this;
            if (end - at < 16) throw new CaptureError("a section header that is too short");
            if (source.number32(at) !== 0x1A2B3C4D) throw new CaptureError("sections with different orders of bytes");
            const version = `${source.number16(at + 4)}.${source.number16(at + 6)}`;
            if (version !== "1.0" && version !== "1.2")
                throw new CaptureError(`version ${version} of pcapng is not read`);
            this.interfaces = [];
        }

        readInterface({at, end}) {
            const {source} = this;
            if (end - at < 8) throw new CaptureError("the description of an interface is too short");
            const link = source.number16(at), kept = keptOf(source.number32(at + 4));
            if (this.link === null) Object.assign(this, {link, kept});
            if (link !== this.link || kept !== this.kept)
                throw new CaptureError("interfaces with different link types or lengths of packets");
            this.interfaces.push(this.readOptions(at + 8, end));
        }

        // How an interface counts time: units of a second, and the second where it begins.
        readOptions(begin, end) {
            const {source} = this, clock = {units: 1_000_000n, offset: 0n}, known = new Set();
            for (let at = begin; at < end;) {
                if (end - at < 4) throw new CaptureError("an option that is cut");
                const code = source.number16(at), length = source.number16(at + 2);
                const contents = at + 4, expected = {0: 0, 9: 1, 14: 8}[code];
                at = contents + Math.ceil(length / 4) * 4;
                if (at > end) throw new CaptureError("an option that is cut");
                if (expected === undefined) continue;
                if (length !== expected || known.has(code)) throw new CaptureError(`a wrong option ${code}`);
                known.add(code);
                if (code === 0) break;
                if (code === 9) clock.units = Pcapng.unitsOf(source.bytes[contents]);
                else clock.offset = BigInt.asIntN(64, source.number64(contents));
            }
            return clock;
        }

        static unitsOf(option) {
            const isBinary = option > 127, exponent = option & 127;
            if (exponent > (isBinary ? mostExponent.binary : mostExponent.decimal))
                throw new CaptureError("an interface that counts time in too small units");
            return (isBinary ? 2n : 10n) ** BigInt(exponent);
        }

        next() {
            for (let block = this.nextBlock(); block; block = this.nextBlock()) {
                if (block.kind === sectionBlock) this.readSection(block);
                else if (block.kind === interfaceBlock) this.readInterface(block);
                else if (block.kind === packetBlock || block.kind === oldPacketBlock) return this.packet(block);
                else if (block.kind === simplePacketBlock) return this.simplePacket(block);
            }
            return null;
        }

        packet({kind, at, end}) {
            const {source} = this;
            if (end - at < 20) throw new CaptureError("the block of a packet is too short");
            const index = kind === packetBlock ? source.number32(at) : source.number16(at);
            const count = BigInt(source.number32(at + 4)) << 32n | BigInt(source.number32(at + 8));
            return this.made(index, count, at + 20, end, source.number32(at + 12), source.number32(at + 16));
        }

        simplePacket({at, end}) {
            if (end - at < 4) throw new CaptureError("the block of a packet is too short");
            const size = this.source.number32(at);
            return this.made(0, 0n, at + 4, end, Math.min(size, this.kept), size);
        }

        made(index, count, at, end, captured, size) {
            if (index >= this.interfaces.length) throw new CaptureError(`a packet of an unknown interface ${index}`);
            if (captured > this.kept || captured > end - at)
                throw new CaptureError(`a packet of ${captured} bytes is beyond its block or the maximum`);
            const {units, offset} = this.interfaces[index], fraction = count % units;
            return {
                time: timeOf(count / units + offset, fraction * second / units),
                bytes: this.source.bytes.subarray(at, at + captured), size: Math.max(size, captured),
            };
        }
    }

    // Calls `read`, and says where its errors happened.
    function during(where, read) {
        try {
            return read();
        } catch (error) {
            if (!(error instanceof CaptureError)) throw error;
            throw new CaptureError(`${where}: ${error.message}`);
        }
    }

    // The packets, one at a time: {number, time, link, bytes, size}. A packet has `size` bytes on the network, and the
    // file may have the first ones only. Throws a CaptureError where the file is cut or damaged.
    function* packetsOf(bytes) {
        const file = during("not a capture", () => {
            if (!isCapture(bytes)) throw new CaptureError("it begins in another way");
            return new (bytes[0] === 0x0A ? Pcapng : Pcap)(new Source(bytes));
        });
        const link = linkOf(file.link);
        for (let number = 1; ; ++number) {
            const packet = during(`after packet ${number - 1}`, () => file.next());
            if (!packet) return;
            yield {number, link, ...packet};
        }
    }

    return {CaptureError, isCapture, packetsOf};
})();
