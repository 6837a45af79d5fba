// Plays a walk of an automation surface (the format is described in tests/automation/walkfile.h)
// through the script face of a control: every step as a script writer would write it, checked
// against the step's expectation. Steps that a script cannot express (reading a method, calling
// a property, an index on a plain property) are skipped and counted.
// Globals: control, newDocument(text), walkName, walkText.
"use strict";

const failureCodes = { mismatch: 0x80020005, badcount: 0x8002000E, unknown: 0x80020006, notfound: 0x80020003 };
const anyValue = Symbol("any");  // `any` in an expectation: any value meets it
const escapes = { n: "\n", t: "\t", r: "\r", 0: "\0", '"': '"', "\\": "\\" };

function tokenize(text) {
    const tokens = [];
    let i = 0;
    while (i < text.length) {
        if (text[i] === " " || text[i] === "\t") {
            i++;
        } else if (text[i] === '"') {
            let s = "";
            for (i++; i < text.length && text[i] !== '"'; i++) {
                if (text[i] !== "\\") {
                    s += text[i];
                } else if (text[i + 1] === "x") {
                    s += String.fromCharCode(parseInt(text.substr(i + 2, 2), 16));
                    i += 3;
                } else {
                    i++;
                    s += text[i] in escapes ? escapes[text[i]] : text[i];
                }
            }
            if (i++ >= text.length) throw new Error("a string without its closing quote");
            tokens.push({ string: s });
        } else {
            let j = i;
            while (j < text.length && !" \t\"".includes(text[j])) j++;
            tokens.push({ word: text.slice(i, j) });
            i = j;
        }
    }
    return tokens;
}

function valueOf(token) {
    if ("string" in token) return token.string;
    const w = token.word;
    if (w === "true") return true;
    if (w === "false") return false;
    if (w === "null") return null;
    if (w === "any") return anyValue;
    const m = /^(-?)(0x[0-9a-f]+|[0-9]+)$/i.exec(w);
    if (!m) throw new Error("not a value: " + w);
    return (m[1] ? -1 : 1) * Number(m[2]);
}

function parseExpectation(tokens) {
    const first = tokens.length ? tokens[0].word : undefined;
    if (["ok", "any", ...Object.keys(failureCodes)].includes(first) && tokens.length === 1) return { kind: first };
    if (first === "error") {
        return { kind: "error", number: valueOf(tokens[1]), text: tokens.length > 2 ? valueOf(tokens[2]) : undefined };
    }
    const out = tokens.findIndex(t => t.word === "out");
    if (out >= 0) {
        return { kind: "out", result: out > 0 ? { value: valueOf(tokens[0]) } : undefined, out: tokens.slice(out + 1).map(valueOf) };
    }
    if (tokens.length !== 1) throw new Error("an expectation is one value");
    return { kind: "value", value: valueOf(tokens[0]) };
}

function parseStep(source, line) {
    const tokens = tokenize(source);
    const arrow = tokens.findIndex(t => t.word === "=>");
    const left = arrow >= 0 ? tokens.slice(0, arrow) : tokens;
    const step = { line, source, verb: left[0].word, member: left.length > 1 ? left[1].word : undefined };
    if (step.verb === "document") return Object.assign(step, { text: valueOf(left[1]) });
    if (step.verb === "nodocument") return step;
    if (!["get", "put", "call"].includes(step.verb) || arrow < 0) throw new Error("not a step");
    return Object.assign(step, { args: left.slice(2).map(valueOf), expect: parseExpectation(tokens.slice(arrow + 1)) });
}

function parseWalk(text) {
    const steps = [];
    text.split("\n").forEach((raw, i) => {
        const source = raw.trim();
        if (source === "" || source.startsWith("#")) return;
        try {
            steps.push(parseStep(source, i + 1));
        } catch (e) {
            throw new Error(`${walkName}.walk:${i + 1}: ${e.message}: ${source}`);
        }
    });
    return steps;
}

const skipped = { skipped: true };

// Runs a step; gives {value} or {error}, or `skipped`.
function perform(step) {
    const e = step.expect;
    try {
        if (step.verb === "put") {
            const value = step.args[step.args.length - 1];
            if (step.args.length === 1) control[step.member] = value;
            else control.put(step.member, ...step.args);
            return { value: undefined };
        }
        const member = control[step.member];
        if (typeof member !== "function") {
            // A plain property: a script reads it, but cannot call it or give it an index.
            return step.verb === "get" && step.args.length === 0 ? { value: member } : skipped;
        }
        if (step.verb === "get" && e.kind === "notfound") return skipped;  // a script cannot read a method
        return { value: member(...step.args) };
    } catch (error) {
        return { error };
    }
}

// Integers compare by their 32 bits, as colours travel unsigned.
function same(actual, expected) {
    if (expected === anyValue || actual === expected) return true;
    if (expected === null) return actual === undefined;
    return typeof expected === "number" && typeof actual === "number" && (actual >>> 0) === (expected >>> 0);
}

function show(v) {
    if (v === anyValue) return "any";
    return typeof v === "string" ? JSON.stringify(v) : (v !== null && typeof v === "object") ? JSON.stringify(v) : String(v);
}

// What a method with by-reference parameters answers: a plain object, where wrapped objects
// have the bridge's helpers.
function isOutAnswer(v) {
    return v !== null && typeof v === "object" && !("on" in v);
}

function showOutcome(o) {
    if (!o.error) return show(o.value);
    const e = o.error;
    return e.scode !== undefined ? `error ${e.number} (scode 0x${e.scode.toString(16)}) "${e.description}"` : String(e);
}

// Null when the outcome meets the expectation, else what was expected.
function mismatch(outcome, e) {
    const { value, error } = outcome;
    switch (e.kind) {
        case "ok": return error ? "ok" : null;
        case "any": return error || value === undefined ? "a value" : null;
        case "value": return !error && same(isOutAnswer(value) ? value.result : value, e.value) ? null : show(e.value);
        case "error":
            return error && error.number === e.number && (e.text === undefined || error.description === e.text)
                ? null : `error ${e.number}` + (e.text === undefined ? "" : ` "${e.text}"`);
        case "out": {
            const expected = (e.result ? `${show(e.result.value)} ` : "") + "out " + e.out.map(show).join(" ");
            if (error || !isOutAnswer(value)) return expected;
            const outs = Object.keys(value).filter(k => k !== "result").map(k => value[k]);
            const resultOk = !e.result || same(value.result, e.result.value);
            return resultOk && outs.length === e.out.length && outs.every((v, i) => same(v, e.out[i])) ? null : expected;
        }
        default:
            return error && error.scode === failureCodes[e.kind] ? null : e.kind;
    }
}

function playWalk(text) {
    const failures = [];
    let played = 0;
    let skips = 0;
    for (const step of parseWalk(text)) {
        const where = `${walkName}.walk:${step.line}: ${step.source}`;
        if (step.verb === "document" || step.verb === "nodocument") {
            control.Document = step.verb === "document" ? newDocument(step.text) : null;
            continue;
        }
        const outcome = perform(step);
        if (outcome === skipped) {
            skips++;
            continue;
        }
        played++;
        const expected = mismatch(outcome, step.expect);
        if (expected !== null) failures.push(`${where}: expected ${expected}, got ${showOutcome(outcome)}`);
    }
    print(`${walkName}: ${played} steps played, ${skips} skipped, ${failures.length} failed`);
    if (played === 0) failures.push(`${walkName}: no step could be played`);
    return failures;
}

const failures = playWalk(walkText);
if (failures.length) throw new Error(failures.length + " steps failed:\n" + failures.join("\n"));
