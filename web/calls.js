// The calls and replies of a capture: what their envelopes say, which reply belongs to which call, and the type of each
// argument and result.
"use strict";

const quorvaCalls = (() => {
    const {grouped} = quorvaReader;
    const {keyOf, reversed} = quorvaStreams;
    const mostCalls = 65536;       // that are remembered for their replies; the oldest is forgotten first
    const longestEnvelope = 1024;  // more than any call or reply has before its argument or result
    const shortestCall = 40, shortestReply = 20;
    const second = 1_000_000_000n; // in nanoseconds, the unit of all times
    const valueColumns = 60;
    const firstOfUsers = 0x20000000; // programs from here on are hexadecimal

    const bytesText = (count) => `${grouped(count)} ${count === 1 ? "byte" : "bytes"}`;
    const hexText = (number) => `0x${number.toString(16).padStart(8, "0")}`;

    // ---- Times ------------------------------------------------------------------------------------------------------

    // Nanoseconds as "0.001250", in seconds, cut to microseconds.
    function secondsText(time) {
        const size = time < 0n ? -time : time, microseconds = String(size / 1000n % 1_000_000n);
        return `${time < 0n ? "-" : ""}${size / second}.${microseconds.padStart(6, "0")}`;
    }

    // As the inspector rounds it: seconds and nanoseconds are added as floating-point numbers.
    function elapsedText(time) {
        const fraction = (time % second + second) % second;
        const seconds = (1e9 * Number((time - fraction) / second) + Number(fraction)) / 1e9;
        return `${(1000 * seconds).toFixed(3)} ms`;
    }

    // ---- Procedures -------------------------------------------------------------------------------------------------

    // The procedures of the modules of a schema, by their numbers.
    class Procedures {
        constructor(modules) {
            this.programs = new Map(modules.flatMap(({programs = []}) => programs.map((each) => [each.number, each])));
        }

        find(numbers) {
            const program = this.programs.get(numbers.program);
            const version = program && program.versions.find(({number}) => number === numbers.version);
            const procedures = version ? version.procedures || [] : [];
            return {program, version, procedure: procedures.find(({number}) => number === numbers.procedure)};
        }

        // "SPOOLER.FIRST.CREATE_JOB", with a number where there is no name: "0x20000001.1.3".
        text(numbers) {
            const {program, version, procedure} = this.find(numbers);
            const number = numbers.program < firstOfUsers ? String(numbers.program) : hexText(numbers.program);
            return `${program ? program.name : number}.${version ? version.name : numbers.version}.` +
                (procedure ? procedure.name : numbers.procedure);
        }
    }

    // ---- Calls and replies ------------------------------------------------------------------------------------------

    const nameOf = (value, what) => typeof value === "string" ? value : `${what} ${value}`;
    const rangeText = ({low, high}) => ` ${low}..${high}`;

    function statusOf({stat, areply, rreply}) {
        if (stat === "MSG_ACCEPTED") {
            const {outcome} = areply;
            return nameOf(outcome.stat, "accept_stat") + (outcome.versions ? rangeText(outcome.versions) : "");
        }
        return rreply.versions ? `RPC_MISMATCH${rangeText(rreply.versions)}` : nameOf(rreply.reason, "auth_stat");
    }

    const areEqual = (a, b) => a.length === b.length && a.every((byte, i) => byte === b[i]);

    class Calls {
        // `envelopes` are the types of rpc/onc_rpc.x.
        constructor(envelopes) {
            this.envelopes = envelopes;
            this.calls = new quorvaPackets.Queue(); // by flow and xid
            this.count = 0;
            this.unanswered = 0;
        }

        // A record with what its envelope says. `body` is the argument or result, as far as it is in the capture,
        // `bodySize` its bytes on the network.
        read(record) {
            const {bytes} = record, envelope = bytes.subarray(0, longestEnvelope);
            const tree = new quorvaReader.Tree(this.envelopes, "RpcMessage", envelope);
            const message = {
                ...record, number: ++this.count, xid: 0, refusal: "", isReply: false, numbers: null, call: 0,
                elapsed: 0n, repeats: 0, status: "", hasBody: false, isProtected: false, body: bytes,
                bodySize: record.size,
            };
            for (const byte of bytes.subarray(0, 4)) message.xid = (message.xid << 8 | byte) >>> 0;
            if (tree.stopped) {
                const {path, offset, reason} = tree.stopped;
                const place = `${path}, byte ${offset} of ${envelope.length}`;
                message.refusal = `cannot decode RpcMessage at ${place}: ${reason}`;
                return message;
            }
            const {cbody, rbody} = tree.json().body;
            message.body = bytes.subarray(tree.length);
            message.bodySize -= tree.length;
            if (rbody) {
                message.isReply = true;
                message.status = statusOf(rbody);
                message.hasBody = message.status === "SUCCESS";
                this.pair(message);
            } else {
                message.numbers = {program: cbody.prog, version: cbody.vers, procedure: cbody.proc};
                message.hasBody = true;
                message.isProtected = cbody.cred.flavor === "RPCSEC_GSS";
                this.remember(message);
            }
            return message;
        }

        remember(message) {
            const key = `${keyOf(message.flow)} ${message.xid}`, known = this.calls.get(key);
            if (known && areEqual(known.bytes, message.bytes)) {
                message.repeats = known.number;
                return;
            }
            if (!known || known.answer !== 0) ++this.unanswered;
            const {number, time, numbers, bytes, isProtected} = message;
            this.calls.put(key, {number, time, numbers, bytes, isProtected, answer: 0}); // a number may be used again
            if (this.calls.size > mostCalls) this.calls.delete(this.calls.first().key);
        }

        pair(message) {
            const call = this.calls.get(`${keyOf(reversed(message.flow))} ${message.xid}`);
            if (!call) return;
            const {numbers, isProtected} = call;
            Object.assign(message, {
                numbers, isProtected, call: call.number, elapsed: message.time - call.time, repeats: call.answer,
            });
            if (call.answer !== 0) return;
            call.answer = message.number;
            --this.unanswered;
        }
    }

    // ---- Captures ---------------------------------------------------------------------------------------------------

    const countedKinds = [
        ["packet without UDP or TCP", "packets without UDP or TCP"],
        ["datagram of another protocol", "datagrams of other protocols"],
        ["stream of another protocol", "streams of other protocols"],
        ["packet that lacks fragments", "packets that lack fragments"],
        ["packet whose fragments contradict each other", "packets whose fragments contradict each other"],
        ["stream for which memory was short", "streams for which memory was short"],
    ];

    // What was not shown, and calls without a reply; empty if there is nothing to say.
    function notesOf(packets, counts, unanswered) {
        const others = countedKinds.map(([one, several], i) => [counts[i], counts[i] === 1 ? one : several])
            .filter(([count]) => count > 0).map(([count, what]) => `${grouped(count)} ${what}`);
        const notes = [];
        if (others.length > 0)
            notes.push(`${grouped(packets)} ${packets === 1 ? "packet" : "packets"}; not read: ${others.join(", ")}`);
        if (unanswered > 0)
            notes.push(`${grouped(unanswered)} ${unanswered === 1 ? "call has" : "calls have"} no reply`);
        return notes.join("; ");
    }

    function isMessage({bytes, size}) {
        const isCall = bytes.length >= 8 && bytes[7] === 0;
        return size >= (isCall ? shortestCall : shortestReply) && quorvaRecords.isEnvelope(bytes);
    }

    function recordOf({flow, time, packet, bytes, size}) {
        const cut = bytes.length < size ? "the capture has only the beginning of its packet" : "";
        return {flow, time, firstPacket: packet, lastPacket: packet, bytes, size, cut};
    }

    // Reads a capture: {start, events, notes, error}. `events` are messages, and losses as records.js has them, in
    // their order; `start` is the time of the first packet; `error` says why the rest of the file is not read.
    function readCapture(bytes, envelopes) {
        const packets = new quorvaPackets.PacketReader(), streams = new quorvaStreams.Streams();
        const calls = new Calls(envelopes), records = [];
        let count = 0, otherDatagrams = 0, start = null, error = "";
        try {
            for (const packet of quorvaCaptureFile.packetsOf(bytes)) {
                ++count;
                if (start === null) start = packet.time;
                const payload = packets.read(packet);
                if (payload && payload.flow.transport === "tcp") streams.add(payload, records);
                else if (payload && isMessage(payload)) records.push(recordOf(payload));
                else if (payload) ++otherDatagrams;
            }
        } catch (caught) {
            if (!(caught instanceof quorvaCaptureFile.CaptureError)) throw caught;
            error = caught.message;
        }
        while (streams.end("the capture ends", records)) continue;
        const events = records.map((each) => each.loss ? each : calls.read(each));
        const counts = [packets.others, otherDatagrams, streams.others, packets.fragments.incomplete,
            packets.fragments.conflicts, streams.forgotten];
        return {start, events, notes: notesOf(count, counts, calls.unanswered), error};
    }

    // ---- Arguments and results --------------------------------------------------------------------------------------

    // {type, isVoid, unknown} of the argument or result: the name of its type, true if it has no bytes, and why neither
    // is known. Bodies of unknown procedures have the type `usual`, if it is not empty.
    function bodyOf(message, procedures, usual) {
        const body = (type, isVoid, unknown = "") => ({type, isVoid, unknown});
        if (message.refusal !== "") return body("", false, message.refusal);
        if (!message.hasBody) return body("", true);
        if (message.isProtected) return body("", false, "RPCSEC_GSS may encrypt it");
        const {program, version, procedure} = message.numbers ? procedures.find(message.numbers) : {};
        if (procedure) {
            const type = message.isReply ? procedure.result : procedure.argument;
            return body(type || "", !type);
        }
        if (message.bodySize === 0) return body("", true);
        if (usual !== "") return body(usual, false);
        return body("", false, !message.numbers ? "the call is not in the capture" : !program ? "unknown program"
            : !version ? "unknown version" : "unknown procedure");
    }

    function cutTo(text, columns) {
        const characters = [...text];
        return characters.length <= columns ? text : `${characters.slice(0, columns - 3).join("")}...`;
    }

    // A line of the list, as `quorvaxdr decode --from pcap` prints it: its columns, and what is wrong.
    function lineOf(event, {types, procedures, usual, start}) {
        const {flow, time} = event;
        const line = {
            number: "", time: secondsText(time - start), flow: `${flow.from} > ${flow.to}`, transport: flow.transport,
            rest: [], problems: [],
        };
        if (event.loss) return {...line, problems: [event.loss]};
        line.number = String(event.number);
        const isRefused = event.refusal !== "";
        line.rest.push(`${isRefused ? "?    " : event.isReply ? "reply" : "call "} ${hexText(event.xid)}`);
        if (!isRefused) {
            const name = event.numbers ? procedures.text(event.numbers) : "?";
            const call = event.call === 0 ? "" : `, to ${event.call} after ${elapsedText(event.elapsed)}`;
            const repeats = event.repeats === 0 ? "" : `, repeats ${event.repeats}`;
            if (event.isReply) line.rest.push(name, event.status + call + repeats);
            else line.rest.push(name + repeats);
        }
        addBody(line, event, bodyOf(event, procedures, usual), types);
        return line;
    }

    function addBody(line, {body, bodySize, bytes, size, cut, refusal, hasBody}, {type, isVoid, unknown}, types) {
        const isLong = type !== "" && bodySize > types.longestMessage;
        const tree = type !== "" && !isLong ? new quorvaReader.Tree(types, type, body) : null;
        const reason = isLong ? `longer than ${bytesText(types.longestMessage)}` : unknown;
        const name = isVoid ? "void" : type;
        const leftOver = isVoid ? body.length : tree && !tree.stopped ? body.length - tree.length : 0;
        if (name !== "" && hasBody) line.rest.push(name);
        const value = tree ? tree.json() : null;
        if (value !== null) line.rest.push(cutTo(JSON.stringify(value), valueColumns));
        if (cut !== "") line.problems.push(`cut, ${grouped(bytes.length)} of ${bytesText(size)}: ${cut}`);
        if (reason !== "" && (cut === "" || refusal === ""))
            line.problems.push(reason + (refusal === "" ? `: ${bytesText(bodySize)}` : ""));
        if (tree && tree.stopped && cut === "") {
            const {path, offset, reason: why} = tree.stopped, place = path === "" ? "" : `${path}, `;
            line.problems.push(`refused at ${place}byte ${offset} of ${body.length}: ${why}`);
        }
        if (leftOver > 0) line.problems.push(`left over: ${bytesText(leftOver)} after ${name}`);
    }

    return {Procedures, readCapture, bodyOf, lineOf};
})();
