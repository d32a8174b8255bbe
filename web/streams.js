// Puts the segments of TCP in order, and reads the records in them.
//
// A byte is taken where it is seen first; later copies of it are dropped. A missing byte is given up as soon as the
// other side has acknowledged it, so that it was lost in the capture only, or when too much waits for it.
"use strict";

const quorvaStreams = (() => {
    const {Queue, lowerBound} = quorvaPackets;
    const mostStreams = 16384;      // directions of connections
    const mostWaiting = 1 << 20;    // bytes of one direction
    const mostHeld = 64 << 20;      // bytes of all
    const mostAhead = 64 << 20;     // a segment further on is of a new connection
    const pieceCost = 128;          // memory of a segment that waits, besides its bytes
    const firstPosition = 2 ** 40;  // so that bytes before it have positions, too

    const different = "segments with different bytes for the same place";

    const keyOf = ({transport, from, to}) => `${transport} ${from} ${to}`;
    const reversed = ({transport, from, to}) => ({transport, from: to, to: from});

    // True if two pieces of a stream have different bytes at the same position.
    function differ(a, b) {
        const from = Math.max(a.position, b.position);
        const to = Math.min(a.position + a.bytes.length, b.position + b.bytes.length);
        for (let at = from; at < to; ++at) if (a.bytes[at - a.position] !== b.bytes[at - b.position]) return true;
        return false;
    }

    // One direction of a connection.
    class Stream {
        constructor(flow) {
            this.records = new quorvaRecords.Records(flow);
            this.isStarted = false;
            this.hadBytes = false;
            this.next = 0;       // sequence number of the next byte
            this.position = 0;   // the same byte, in numbers that do not wrap around
            this.finish = null;  // position of the end
            this.waiting = [];   // pieces {position, bytes, size, time, packet}, by position
            this.waitingSize = 0;
            this.time = 0n;      // of the packet that makes the next bytes known
            this.packet = 0;
            this.held = 0;       // as counted in the sum of all
        }

        at(earliest) {
            return {time: this.time, packet: this.packet, earliest};
        }

        // Takes a segment whose first byte has this sequence number.
        add(segment, sequence, events) {
            Object.assign(this, {time: segment.time, packet: segment.packet});
            const distance = () => (sequence - this.next) | 0;
            const isFar = segment.size > 0 && Math.abs(distance()) > mostAhead;
            const isOther = segment.synchronises && this.position + distance() !== firstPosition;
            if (!this.isStarted || isFar || isOther) {
                if (this.isStarted) this.flush("a new connection begins", events);
                Object.assign(this, {isStarted: true, next: sequence, position: firstPosition, finish: null});
            }
            const position = this.position + distance();
            if (segment.size > 0) this.addBytes(segment, position, events);
            if (segment.finishes) {
                this.finish = position + segment.size;
                const end = {bytes: new Uint8Array(), size: 0, time: segment.time, packet: segment.packet};
                if (this.finish > this.position) this.wait({position: this.finish, ...end}); // shows a gap before it
            }
            if (segment.resets) this.flush("the connection is reset", events);
            if (this.finish === this.position) this.flush("the stream ends", events);
        }

        addBytes({bytes, size, time, packet}, position, events) {
            this.hadBytes = true;
            if (position + size <= this.position) return;
            if (position <= this.position && this.waiting.length === 0)
                return this.deliver({position, bytes, size, packet}, events);
            const known = this.wait({position, bytes, size, time, packet});
            if (known) {
                if (differ(known, {position, bytes})) this.records.warn(different, this.at(packet), events);
                if (bytes.length > known.bytes.length) {
                    this.waitingSize += bytes.length - known.bytes.length;
                    Object.assign(known, {bytes, size, time, packet});
                }
            }
            this.drain(events);
            while (this.waitingSize > mostWaiting) this.skipGap(events);
        }

        // Keeps a piece. Returns the one that is already there, if there is one.
        wait(piece) {
            const at = lowerBound(this.waiting, "position", piece.position), known = this.waiting[at];
            if (known && known.position === piece.position) return known;
            this.waiting.splice(at, 0, piece);
            this.waitingSize += piece.bytes.length + pieceCost;
            return null;
        }

        // Hands out a piece that begins at the next byte or before it.
        deliver({position, bytes, size, packet}, events) {
            const known = this.position - position;
            if (known >= size) return;
            this.position += size - known;
            this.next = (this.next + size - known) >>> 0;
            const place = this.at(packet), captured = Math.max(known, bytes.length);
            if (known < bytes.length) this.records.append(bytes.subarray(known), place, events);
            if (captured < size) this.records.skip(size - captured, place, events);
        }

        // Hands out what no longer waits.
        drain(events) {
            let last = {position: 0, bytes: []}, count = 0;
            for (; count < this.waiting.length && this.waiting[count].position <= this.position; ++count) {
                const piece = this.waiting[count];
                this.waitingSize -= piece.bytes.length + pieceCost;
                if (piece.packet > this.packet) Object.assign(this, {time: piece.time, packet: piece.packet});
                if (differ(last, piece)) this.records.warn(different, this.at(piece.packet), events);
                this.deliver(piece, events);
                last = piece;
            }
            this.waiting.splice(0, count);
        }

        skipGap(events) {
            const [{position, time, packet}] = this.waiting, size = position - this.position;
            this.records.skip(size, this.at(this.packet), events);
            this.next = (this.next + size) >>> 0;
            Object.assign(this, {position, time, packet});
            this.drain(events);
        }

        flush(why, events) {
            while (this.waiting.length > 0) this.skipGap(events);
            this.records.end(why, this.at(this.packet), events);
        }
    }

    class Streams {
        constructor() {
            this.streams = new Queue(); // by flow; the one that is idle for the longest time first
            this.held = 0;
            this.others = 0;            // directions in which no record was found, among those that had bytes
            this.forgotten = 0;         // directions that were forgotten while they had bytes in memory
        }

        // Adds a segment, and appends the events that it completes.
        add(segment, events) {
            if (segment.acknowledges) this.acknowledge(segment, events);
            const key = keyOf(segment.flow), stream = this.streams.get(key) || new Stream(segment.flow);
            this.streams.put(key, stream);
            if (this.streams.size > mostStreams) this.forgetOldest(events);
            stream.add(segment, (segment.sequence + Number(segment.synchronises)) >>> 0, events);
            this.count(stream);
            while (this.held > mostHeld) this.forgetOldest(events);
        }

        // Gives up what the other side has received, although the capture does not have it.
        acknowledge({flow, acknowledgement}, events) {
            const stream = this.streams.get(keyOf(reversed(flow)));
            if (!stream || stream.waiting.length === 0) return;
            const received = stream.position + ((acknowledgement - stream.next) | 0);
            while (stream.waiting.length > 0 && stream.waiting[0].position <= received) stream.skipGap(events);
            this.count(stream);
        }

        count(stream) {
            const now = stream.records.held + stream.waitingSize;
            this.held += now - stream.held;
            stream.held = now;
        }

        forgetOldest(events) {
            if (this.streams.first().value.held > 0) ++this.forgotten;
            this.end("it is idle for too long", events);
        }

        // Ends the stream that is idle for the longest time. Returns false if there is none.
        end(why, events) {
            const {key, value: stream} = this.streams.first();
            if (!stream) return false;
            stream.flush(why, events);
            this.held -= stream.held;
            if (stream.hadBytes && !stream.records.hasRecords) ++this.others;
            this.streams.delete(key);
            return true;
        }
    }

    return {Streams, keyOf, reversed};
})();
