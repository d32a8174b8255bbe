// Records of ONC RPC in one direction of a TCP connection.
//
// A record is trusted once 12 bytes of its message begin as a call or reply. Where that fails, and after a gap, the
// next place is searched for where a record mark and such a message follow each other.
"use strict";

const quorvaRecords = (() => {
    const {grouped} = quorvaReader;
    const mostKept = 65535 + 1024;    // of a message with its envelope; the rest is counted only
    const longestRecord = 16 << 20;   // a longer one is taken for a damaged mark
    const markBytes = 4;
    const startSize = 12;             // bytes of a message that tell what it is
    const mostRaw = 128;              // bytes in which they have to come, with the marks between them
    const shortest = 20;              // bytes of a message: a denied reply
    const window = 24;                // bytes of a message that a search looks at

    const unitAt = (bytes, at) =>
        (bytes[at] << 24 | bytes[at + 1] << 16 | bytes[at + 2] << 8 | bytes[at + 3]) >>> 0;

    // True if the bytes begin as a call, or as a reply, of ONC RPC version 2.
    function isEnvelope(bytes) {
        const longestVerifier = 400, lastAcceptStat = 5, lastRejectStat = 1;
        if (bytes.length < startSize) return false;
        const type = unitAt(bytes, 4), next = unitAt(bytes, 8);
        if (type === 0) return next === 2; // a call, and the version of the protocol
        if (type !== 1 || next > 1) return false;
        if (next === 1) return bytes.length < 16 || unitAt(bytes, 12) <= lastRejectStat;
        if (bytes.length < 20) return true;
        const verifier = unitAt(bytes, 16);
        if (verifier > longestVerifier) return false;
        const status = 20 + Math.ceil(verifier / 4) * 4;
        return bytes.length < status + 4 || unitAt(bytes, status) <= lastAcceptStat;
    }

    const noBytes = new Uint8Array();

    // Bytes that grow.
    class Bytes {
        constructor() {
            this.storage = noBytes;
            this.size = 0;
        }

        append(more) {
            const size = this.size + more.length;
            if (size > this.storage.length) {
                const larger = new Uint8Array(Math.max(size, 2 * this.storage.length));
                larger.set(this.storage.subarray(0, this.size));
                this.storage = larger;
            }
            this.storage.set(more, this.size);
            this.size = size;
        }

        all() {
            return this.storage.subarray(0, this.size);
        }
    }

    // The methods append what they find to `events`: records {flow, time, firstPacket, lastPacket, bytes, size, cut}
    // and losses {flow, time, packet, loss}. A place is {time, packet, earliest}, the last one the packet that has the
    // bytes, which may have waited for others.
    class Records {
        constructor(flow) {
            this.flow = flow;
            this.hasRecords = false;
            this.isLost = false;  // a loss was told, and no record was found since
            this.lostBefore = 0;  // bytes that were missing before the first record
            this.doubt = "";      // of before the first record
            this.restart("untrusted");
        }

        // "untrusted" at the start of a record, whose bytes `raw` has with their marks; "trusted" within a record; or
        // "searching", where the next bytes may show that a record begins in `raw`.
        restart(state) {
            this.state = state;
            this.raw = [];
            this.record = {firstPacket: 0, contents: new Bytes(), size: 0, cut: ""};
            this.mark = [];
            this.isLast = false;
            this.fragmentLeft = 0;
        }

        // Bytes that the object keeps.
        get held() {
            return this.raw.length + this.record.contents.size;
        }

        append(bytes, place, events) {
            const rereadFrom = (first, at) => {
                bytes = quorvaPackets.joined([this.raw.slice(first), bytes.subarray(at)]);
                this.raw = [];
            };
            if (this.state === "searching" && this.raw.length > 0) rereadFrom(0, 0);
            for (let at = 0; at < bytes.length;) {
                if (this.state === "searching") {
                    at = this.search(bytes, at);
                    continue;
                }
                at += this.take(bytes, at, place, events);
                if (this.state !== "searching" || this.raw.length === 0) continue;
                if (this.raw.length - 1 <= at) { // no record begins at the first byte of `raw`
                    at -= this.raw.length - 1;
                    this.raw = [];
                } else {
                    rereadFrom(1, at);
                    at = 0;
                }
            }
        }

        // Takes some of the bytes from `at` on, and returns their number.
        take(bytes, at, place, events) {
            const isTrusted = this.state === "trusted", {record} = this;
            record.firstPacket = record.firstPacket === 0 ? place.earliest
                : Math.min(record.firstPacket, place.earliest);
            if (this.mark.length < markBytes) {
                const taken = bytes.subarray(at, at + markBytes - this.mark.length);
                this.mark.push(...taken);
                if (!isTrusted) this.raw.push(...taken);
                if (this.mark.length === markBytes) this.takeMark(place, events);
                return taken.length;
            }
            const left = Math.min(this.fragmentLeft, bytes.length - at);
            const size = isTrusted ? left : Math.min(left, startSize - record.contents.size);
            const taken = bytes.subarray(at, at + size);
            if (!isTrusted) this.raw.push(...taken);
            if (record.cut === "") record.contents.append(taken.subarray(0, mostKept - record.contents.size));
            this.fragmentLeft -= size;
            if (!isTrusted && record.contents.size === startSize) this.checkStart(place, events);
            if (this.state !== "searching" && this.fragmentLeft === 0) this.endFragment(place, events);
            return size;
        }

        endFragment(place, events) {
            this.mark = [];
            if (this.isLast) this.emit(place, events);
        }

        takeMark(place, events) {
            const mark = unitAt(this.mark, 0), length = mark & 0x7FFFFFFF;
            if (length > longestRecord - this.record.size)
                return this.giveUp(`a record mark of ${grouped(length)} bytes`, place, events);
            if (this.state === "untrusted" && this.raw.length > mostRaw)
                return this.giveUp("a record in too many small fragments", place, events);
            this.record.size += length;
            this.fragmentLeft = length;
            this.isLast = mark > 0x7FFFFFFF;
            if (length === 0) this.endFragment(place, events);
        }

        // Trusts the record if it begins as a message.
        checkStart(place, events) {
            if (!isEnvelope(this.record.contents.all()))
                return this.giveUp("a record that is not a call or reply", place, events);
            if (this.lostBefore > 0)
                this.lose(`${grouped(this.lostBefore)} bytes before this are not in the capture`, place, events);
            if (this.doubt !== "") this.lose(this.doubt, place, events);
            this.lostBefore = 0;
            this.doubt = "";
            this.hasRecords = true;
            this.isLost = false;
            this.state = "trusted";
            this.raw = [];
        }

        // Returns where a record begins, or the size of `bytes` if there is none.
        search(bytes, from) {
            for (let at = from; at < bytes.length; ++at) {
                const left = bytes.length - at;
                if (left >= markBytes) {
                    const length = unitAt(bytes, at) - 0x80000000; // of a last fragment
                    if (length < shortest || length > longestRecord) continue;
                    const begin = at + markBytes, needed = Math.min(window, length);
                    if (left - markBytes >= needed) {
                        if (!isEnvelope(bytes.subarray(begin, begin + needed))) continue;
                        this.restart("untrusted");
                        return at;
                    }
                }
                this.raw = [...bytes.subarray(at)]; // the next bytes decide
                break;
            }
            return bytes.length;
        }

        giveUp(sentence, place, events) {
            const {raw} = this;
            if (this.state === "trusted") {
                if (this.record.cut === "") this.record.cut = `${sentence} follows`;
                this.emit(place, events);
            } else if (this.hasRecords && !this.isLost) {
                this.lose(`${sentence}; everything before the next record is skipped`, place, events);
                this.isLost = true;
            }
            this.restart("searching");
            this.raw = raw;
        }

        // The next bytes of the stream are not in the capture.
        skip(size, place, events) {
            const missing = `${grouped(size)} ${size === 1 ? "byte is" : "bytes are"} not in the capture`;
            if (!this.hasRecords) this.lostBefore += size;
            else if (this.state !== "trusted") this.lose(missing, place, events);
            if (this.state !== "trusted") return this.restart("searching");

            const {record} = this;
            if (record.cut === "") record.cut = `from its byte ${grouped(record.contents.size)} on, ${missing}`;
            const endsWithin = this.mark.length === markBytes && size <= this.fragmentLeft;
            this.fragmentLeft -= endsWithin ? size : 0;
            if (endsWithin && this.fragmentLeft !== 0) return;
            this.mark = [];
            if (endsWithin && !this.isLast) return;
            this.emit(place, events);
            if (endsWithin) return;
            this.lose(missing, place, events);
            this.state = "searching";
        }

        // The stream ends here, or the capture does. `why` completes "... within it": "the stream ends".
        end(why, place, events) {
            if (this.state === "trusted") {
                if (this.record.cut === "") this.record.cut = `${why} within it`;
                this.emit(place, events);
            } else if (this.state === "untrusted" && this.hasRecords && this.raw.length > 0) {
                this.lose(`${why} within the first bytes of a record`, place, events);
            }
            this.restart("untrusted");
        }

        // Tells of a doubt about the bytes that come next, once the stream has a record.
        warn(sentence, place, events) {
            if (this.hasRecords) this.lose(sentence, place, events);
            else this.doubt = sentence;
        }

        // Hands out a trusted record, with what there is of it. A record that is shorter than any message is refused.
        emit(place, events) {
            const {flow, record: {firstPacket, contents, size, cut}} = this;
            if (this.state !== "trusted") return this.giveUp(`a record of ${grouped(size)} bytes`, place, events);
            events.push({
                flow, time: place.time, firstPacket, lastPacket: Math.max(firstPacket, place.packet),
                bytes: contents.all().slice(), size, cut,
            });
            this.restart("untrusted");
        }

        lose(sentence, {time, packet}, events) {
            events.push({flow: this.flow, time, packet, loss: sentence});
        }
    }

    return {Records, isEnvelope};
})();
