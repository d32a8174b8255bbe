// The list of the calls and replies of a capture, from which one is chosen.
"use strict";

const quorvaCaptureList = (() => {
    const mostListed = 1000;
    const at = (id) => document.getElementById(id);

    class CaptureList {
        // `open` takes a message and what is known of its argument or result (see calls.js).
        constructor(schema, types, open) {
            this.envelopes = new quorvaReader.Types(quorvaEnvelopes);
            this.view = {types, procedures: new quorvaCalls.Procedures(schema.modules)};
            this.open = open;
            at("messages").addEventListener("keydown", (event) => this.move(event));
            at("wanted").addEventListener("input", () => this.list());
        }

        // Lists a capture. Bodies of unknown procedures have the type `usual`, if it is not empty. Returns a sentence.
        show(bytes, usual) {
            const {start, events, notes, error} = quorvaCalls.readCapture(bytes, this.envelopes);
            Object.assign(this.view, {start, usual});
            this.events = events;
            this.lines = [];
            at("wanted").value = "";
            at("capture").hidden = events.length === 0;
            this.list();
            const messages = events.filter((event) => !event.loss).length;
            const found = `${quorvaReader.grouped(messages)} ${messages === 1 ? "call or reply" : "calls and replies"}`;
            return [`a capture with ${found}`, error, notes].filter(Boolean).join("; ");
        }

        hide() {
            at("capture").hidden = true;
        }

        // Lists the messages whose lines have the text of the filter.
        list() {
            const wanted = at("wanted").value.trim().toLowerCase(), listed = [];
            for (let i = 0; i < this.events.length && listed.length < mostListed; ++i) {
                this.lines[i] ||= quorvaCalls.lineOf(this.events[i], this.view);
                if (wanted === "" || CaptureList.textOf(this.lines[i]).includes(wanted)) listed.push(i);
            }
            at("messages").replaceChildren(...listed.map((i) => this.row(i)));
            const first = at("messages").querySelector("button");
            if (first) first.tabIndex = 0;
            at("listed").textContent = listed.length === mostListed ? `the first ${mostListed} are listed`
                : `${listed.length} of ${this.events.length}`;
        }

        static textOf({number, time, flow, transport, rest, problems}) {
            return [number, time, flow, transport, ...rest, ...problems].join("  ").toLowerCase();
        }

        row(i) {
            const {number, time, flow, transport, rest, problems} = this.lines[i], event = this.events[i];
            const item = document.createElement("li"), row = document.createElement(event.loss ? "p" : "button");
            const texts = [[number, "number"], [time, "time"], [`${flow} ${transport}`, "flow"],
                ...rest.map((text) => [text, "said"]), ...problems.map((text) => [`! ${text}`, "refusal"])];
            row.append(...texts.map(([text, className]) => {
                const span = document.createElement("span");
                span.className = className;
                span.textContent = `${text} `;
                return span;
            }));
            item.append(row);
            if (event.loss) return item;
            row.type = "button";
            row.tabIndex = -1;
            row.addEventListener("click", () => {
                this.choose(row);
                this.open(event, quorvaCalls.bodyOf(event, this.view.procedures, this.view.usual));
            });
            return item;
        }

        choose(row) {
            for (const each of at("messages").querySelectorAll("[aria-current]")) each.removeAttribute("aria-current");
            row.setAttribute("aria-current", "true");
            this.stopAt(row);
        }

        // The Tab key reaches one message, the arrow keys reach the others.
        stopAt(row) {
            for (const each of at("messages").querySelectorAll("button[tabindex='0']")) each.tabIndex = -1;
            row.tabIndex = 0;
        }

        move(event) {
            const rows = [...at("messages").querySelectorAll("button")], here = rows.indexOf(document.activeElement);
            const targets = {ArrowDown: rows[here + 1], ArrowUp: rows[here - 1], Home: rows[0], End: rows.at(-1)};
            const next = targets[event.key];
            if (!next) return;
            event.preventDefault();
            this.stopAt(next);
            next.focus();
        }
    }

    return {CaptureList};
})();
