// What UDP and TCP carry in the packets of a capture: Ethernet with VLAN tags, Linux cooked captures, loopback and raw
// IP; IPv4 and IPv6 with extension headers and fragments. Checksums are not compared.
"use strict";

const quorvaPackets = (() => {
    const protocols = new Map([[6, "tcp"], [17, "udp"]]);
    const version4Type = 0x0800, version6Type = 0x86DD;
    const vlanTypes = [0x8100, 0x88A8, 0x9100];
    const linkSizes = {ethernet: 14, cooked: 16, cooked2: 20};

    // The index of the first item of a sorted list whose `key` is not below `least`.
    function lowerBound(items, key, least) {
        let begin = 0, end = items.length;
        while (begin < end) {
            const middle = (begin + end) >>> 1;
            if (items[middle][key] < least) begin = middle + 1;
            else end = middle;
        }
        return begin;
    }

    function joined(pieces) {
        const all = new Uint8Array(pieces.reduce((size, piece) => size + piece.length, 0));
        let at = 0;
        for (const piece of pieces) {
            all.set(piece, at);
            at += piece.length;
        }
        return all;
    }

    // Values by key, and the one that was put first. (A Map takes long to find that after many were deleted.)
    class Queue {
        constructor() {
            this.items = new Map();
            this.ends = {key: null, value: null}; // a ring
            this.ends.before = this.ends.after = this.ends;
        }

        get size() {
            return this.items.size;
        }

        get(key) {
            const item = this.items.get(key);
            return item && item.value;
        }

        // Puts a value at the end, also if it was there before.
        put(key, value) {
            this.delete(key);
            const item = {key, value, before: this.ends.before, after: this.ends};
            item.before.after = item.after.before = item;
            this.items.set(key, item);
        }

        delete(key) {
            const item = this.items.get(key);
            if (!item) return;
            item.before.after = item.after;
            item.after.before = item.before;
            this.items.delete(key);
        }

        // {key, value}, both null if there is none.
        first() {
            return this.ends.after;
        }
    }

    // ---- Fragments of IP --------------------------------------------------------------------------------------------

    class Fragments {
        static mostHeld = 16 << 20;
        static longestWait = 15_000_000_000n; // nanoseconds, as identifications repeat
        static longestPayload = 65535;
        static pieceCost = 128;               // memory of a piece besides its bytes

        constructor() {
            this.packets = new Queue();
            this.held = 0;
            this.dropped = 0;
            this.conflicts = 0;     // packets with fragments that contradict each other
            this.conflictsOpen = 0; // those of them that are in the queue
        }

        // Packets that were dropped, or still lack fragments.
        get incomplete() {
            return this.dropped + this.packets.size - this.conflictsOpen;
        }

        // Adds a fragment {offset, bytes, isLast}. Returns the payload of its packet, or null if a fragment is missing.
        add(key, fragment, time) {
            let packet = this.packets.get(key);
            if (packet && time - packet.begun >= Fragments.longestWait) {
                this.forget(key);
                packet = undefined;
            }
            if (!packet) {
                const held = Fragments.pieceCost;
                packet = {pieces: [], held, received: 0, size: 0, isConflicting: false, begun: time};
                this.held += held;
                this.packets.put(key, packet);
            }
            if (!packet.isConflicting) this.insert(packet, fragment);
            if (!packet.isConflicting && packet.size !== 0 && packet.received === packet.size) {
                this.remove(key);
                return joined(packet.pieces.map(({bytes}) => bytes));
            }
            while (this.held > Fragments.mostHeld) this.forget(this.packets.first().key);
            return null;
        }

        insert(packet, {offset, bytes, isLast}) {
            const {pieces} = packet, end = offset + bytes.length;
            if (bytes.length === 0) return;
            const at = lowerBound(pieces, "offset", offset), after = pieces[at], before = pieces[at - 1];
            const isRepeat = after && after.offset === offset && after.bytes.length === bytes.length &&
                after.bytes.every((byte, i) => byte === bytes[i]);
            if (isRepeat && (!isLast || packet.size === end)) return;
            const overlaps = (after && after.offset < end) || (before && before.offset + before.bytes.length > offset);
            const furthest = pieces.length > 0 ? pieces.at(-1).offset : 0;
            const isBeyond = end > Fragments.longestPayload || (isLast && furthest >= end) ||
                (packet.size !== 0 && (isLast || end > packet.size));
            if (overlaps || isBeyond) return this.refuse(packet);
            const cost = bytes.length + Fragments.pieceCost;
            pieces.splice(at, 0, {offset, bytes});
            packet.received += bytes.length;
            packet.held += cost;
            this.held += cost;
            if (isLast) packet.size = end;
        }

        refuse(packet) {
            packet.isConflicting = true;
            packet.pieces = [];
            this.held -= packet.held - Fragments.pieceCost;
            packet.held = Fragments.pieceCost;
            ++this.conflicts;
            ++this.conflictsOpen;
        }

        forget(key) {
            if (!this.packets.get(key).isConflicting) ++this.dropped;
            this.remove(key);
        }

        remove(key) {
            const packet = this.packets.get(key);
            this.held -= packet.held;
            if (packet.isConflicting) --this.conflictsOpen;
            this.packets.delete(key);
        }
    }

    // ---- Headers ----------------------------------------------------------------------------------------------------

    // Bytes of which headers are taken; `size` is their number on the network.
    class Rest {
        constructor(bytes, size) {
            Object.assign(this, {bytes, size, at: 0, end: bytes.length});
        }

        has(count) {
            return this.end - this.at >= count;
        }

        byte(offset) {
            return this.bytes[this.at + offset];
        }

        number16(offset) {
            return this.byte(offset) << 8 | this.byte(offset + 1);
        }

        number32(offset) {
            return (this.number16(offset) << 16 | this.number16(offset + 2)) >>> 0;
        }

        skip(count) {
            this.at += count;
            this.size -= count;
        }

        // Takes away what follows this many bytes, such as the padding of a short Ethernet packet.
        limit(count) {
            this.size = Math.min(this.size, count);
            this.end = Math.min(this.end, this.at + count);
        }

        isCut() {
            return this.end - this.at < this.size;
        }

        left() {
            return this.bytes.subarray(this.at, this.end);
        }
    }

    // The functions that take headers return false or null for a packet that is cut, malformed, encrypted or of another
    // protocol.

    function takeLink(link, rest) {
        if (link === "raw") return true;
        const size = link === "loopback" ? 4 : linkSizes[link];
        if (!rest.has(size)) return false;
        let type = link === "loopback" ? version4Type : rest.number16(link === "cooked2" ? 0 : size - 2);
        rest.skip(size);
        while (vlanTypes.includes(type)) {
            if (!rest.has(4)) return false;
            type = rest.number16(2);
            rest.skip(4);
        }
        return type === version4Type || type === version6Type; // after loopback, IP itself tells its version
    }

    function address4(rest, at) {
        return `${rest.byte(at)}.${rest.byte(at + 1)}.${rest.byte(at + 2)}.${rest.byte(at + 3)}`;
    }

    // The address as inet_ntop prints it, in brackets: "[fe80::1]".
    function address6(rest, at) {
        const groups = Array.from({length: 8}, (_, i) => rest.number16(at + 2 * i));
        let zeros = {at: -1, size: 1}; // the longest run, which is left out
        for (let i = 0; i < 8; ++i) {
            let size = 0;
            while (i + size < 8 && groups[i + size] === 0) ++size;
            if (size > zeros.size) zeros = {at: i, size};
            i += size;
        }
        const isOf4 = zeros.at === 0 && (zeros.size === 6 || (zeros.size === 5 && groups[5] === 0xFFFF));
        const texts = groups.map((group) => group.toString(16));
        if (isOf4) texts.splice(6, 2, address4(rest, at + 12));
        if (zeros.at < 0) return `[${texts.join(":")}]`;
        return `[${texts.slice(0, zeros.at).join(":")}::${texts.slice(zeros.at + zeros.size).join(":")}]`;
    }

    function takeVersion4(rest) {
        if (!rest.has(20)) return null;
        const headerSize = (rest.byte(0) & 0x0F) * 4, total = rest.number16(2), fragment = rest.number16(6);
        if (headerSize < 20 || !rest.has(headerSize) || (total !== 0 && total < headerSize)) return null;
        const ip = {
            isFragment: (fragment & 0x3FFF) !== 0, offset: (fragment & 0x1FFF) * 8, isLast: (fragment & 0x2000) === 0,
            identification: rest.number16(4), protocol: rest.byte(9), from: address4(rest, 12), to: address4(rest, 16),
        };
        if (total !== 0) rest.limit(total); // 0: the network card divides the packet later
        rest.skip(headerSize);
        return ip;
    }

    const fragmentHeader = 44, authentication = 51, otherExtensions = [0, 43, 60, 135];

    function takeVersion6(rest) {
        if (!rest.has(40)) return null;
        const total = rest.number16(4);
        const ip = {
            isFragment: false, offset: 0, isLast: true, identification: 0, protocol: rest.byte(6),
            from: address6(rest, 8), to: address6(rest, 24),
        };
        rest.skip(40);
        if (total !== 0) rest.limit(total);
        while (ip.protocol === fragmentHeader || ip.protocol === authentication ||
               otherExtensions.includes(ip.protocol)) {
            if (!rest.has(8)) return null;
            const isFragmentHeader = ip.protocol === fragmentHeader;
            const size = isFragmentHeader ? 8 : 8 + rest.byte(1) * (ip.protocol === authentication ? 4 : 8);
            if (!rest.has(size)) return null;
            if (isFragmentHeader) {
                ip.offset = rest.number16(2) & 0xFFF8;
                ip.isLast = (rest.number16(2) & 1) === 0;
                ip.isFragment = ip.offset !== 0 || !ip.isLast;
                ip.identification = rest.number32(4);
            }
            ip.protocol = rest.byte(0);
            rest.skip(size);
            if (ip.isFragment) break;
        }
        return ip;
    }

    const flowOf = (rest, ip, transport) =>
        ({from: `${ip.from}:${rest.number16(0)}`, to: `${ip.to}:${rest.number16(2)}`, transport});

    function takeUdp(rest, ip) {
        if (!rest.has(8)) return null;
        const size = rest.number16(4), flow = flowOf(rest, ip, "udp");
        if (size > rest.size || (size !== 0 && size < 8)) return null;
        if (size !== 0) rest.limit(size);
        rest.skip(8);
        return {flow, bytes: rest.left(), size: rest.size};
    }

    function takeTcp(rest, ip) {
        if (!rest.has(20)) return null;
        const headerSize = (rest.byte(12) >> 4) * 4, flags = rest.byte(13);
        if (headerSize < 20 || headerSize > rest.size) return null;
        const segment = {
            flow: flowOf(rest, ip, "tcp"), sequence: rest.number32(4), acknowledgement: rest.number32(8),
            finishes: (flags & 0x01) !== 0, synchronises: (flags & 0x02) !== 0, resets: (flags & 0x04) !== 0,
            acknowledges: (flags & 0x10) !== 0,
        };
        rest.skip(headerSize); // the options may be cut
        return {...segment, bytes: rest.left(), size: rest.size};
    }

    // ---- Packets ----------------------------------------------------------------------------------------------------

    class PacketReader {
        constructor() {
            this.fragments = new Fragments();
            this.others = 0; // packets without UDP or TCP, or with headers that are cut or malformed
        }

        // The datagram or segment of a packet, {flow, time, packet, bytes, size} and, of TCP, sequence,
        // acknowledgement and flags; null if it has none, or only a fragment of one.
        read({number, time, link, bytes, size}) {
            let rest = new Rest(bytes, size);
            const version = takeLink(link, rest) && rest.has(1) ? rest.byte(0) >> 4 : 0;
            const ip = version === 4 ? takeVersion4(rest) : version === 6 ? takeVersion6(rest) : null;
            const transport = ip && protocols.get(ip.protocol);
            if (!transport) return this.other();
            if (ip.isFragment) {
                const key = `${ip.from} ${ip.to} ${ip.identification} ${ip.protocol}`;
                const contents = rest.isCut() ? new Uint8Array() : rest.left(); // a cut one is missing
                const whole = this.fragments.add(key, {offset: ip.offset, bytes: contents, isLast: ip.isLast}, time);
                if (!whole) return null;
                rest = new Rest(whole, whole.length);
            }
            const payload = transport === "udp" ? takeUdp(rest, ip) : takeTcp(rest, ip);
            if (payload) return {...payload, time, packet: number};
            return ip.isFragment ? null : this.other();
        }

        other() {
            ++this.others;
            return null;
        }
    }

    return {PacketReader, Queue, lowerBound, joined};
})();
