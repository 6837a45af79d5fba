// The control and its document through the script bridge: writes that read back or are refused
// with the exact error, out arguments, indexed properties, wrapped results passed back, and
// events with by-value and by-reference arguments. Globals: control, document, host.
"use strict";

function check(ok, what) {
    if (!ok) throw new Error("failed: " + what);
}

// Runs f, which must fail with the automation error `number` (and `scode`); gives the error.
function refused(f, number, scode) {
    try {
        f();
    } catch (e) {
        check(e.number === number && e.scode === scode && e.message.length > 0,
              `error ${number} 0x${scode.toString(16)} expected, got ${e.number} 0x${(e.scode || 0).toString(16)} ${e}`);
        return e;
    }
    throw new Error(`failed: error ${number} expected, nothing thrown`);
}

document.Text = "<p>Hello</p>\n<b>World</b>";
check(document.Length === 25 && control.LineCount === 2, "the document reads through its own description");

// Writes read back; refused writes leave the value and raise the exact error.
control.TabSize = 8;
check(control.TabSize === 8, "TabSize reads back");
const style = control.HighlightStyle;
refused(() => { control.HighlightStyle = 4; }, 380, 0x800A017C);
check(control.HighlightStyle === style, "a refused write keeps the value");
check(control.ColumnMax === 0x7FFFFFFF, "ColumnMax reads its largest value");
refused(() => { control.ColumnMax = control.ColumnMax; }, 380, 0x800A017C);
refused(() => { control.LineCount = 3; }, 383, 0x800A017F);
refused(() => { control.TabSize = "wide"; }, 0x80020005, 0x80020005);
refused(() => control.NoSuchMember, 0x80020006, 0x80020006);
refused(() => control.SetSelection(1), 0x8002000E, 0x8002000E);
let here;
try { here = new Error().lineNumber; control.NoSuchMember; } catch (e) { check(e.lineNumber === here && /surface\.js$/.test(e.fileName), "the error names the calling line"); }

// Out arguments come back by their parameter names, with the result when there is one.
control.SetSelection(10, 5);
const selection = control.GetSelection();
check(JSON.stringify(selection) === '{"pnStart":10,"pnEnd":5}', "GetSelection answers " + JSON.stringify(selection));
const point = control.FindPointFromPosition(3);
check(Object.keys(point).join() === "result,nX,nY" && typeof point.nX === "number", "FindPointFromPosition answers " + JSON.stringify(point));

// Indexed properties read by call and write by put.
control.put("FormatBackColor", 3, 0x123456);
check(control.FormatBackColor(3) === 0x123456, "FormatBackColor(3) reads back");
refused(() => control.put("FormatBackColor", 3, "red"), 0x80020005, 0x80020005);
check(control.FormatBackColor(3) === 0x123456, "a refused put keeps the value");

// Objects come back wrapped, and travel back as themselves.
check(control.Document.Length === 25, "the control's document is the document");
check(control.Selection.Text === "llo</", "the selection's text is " + control.Selection.Text);
check(control.GutterFont === null && String(control) === "[object _DZentrel]", "a null object and the object's name");
const other = host.newDocument("<i>x</i>");
control.Document = other;
check(control.Document.Text === "<i>x</i>" && control.LineCount === 1, "a wrapped document passed to the control");
control.Document = document;

// Events: every handler with the event's arguments in order, until it is removed. A new text
// is a change that ends with the insertion of the whole text at 0.
let changes = [];
const onChange = (action, at, count) => changes.push([at, count].join());
control.on("DocumentChanged", onChange);
control.on("documentchanged", () => changes.push("second"));
document.Text = "abc";
check(changes.length >= 2 && changes.every((c, i) => (i % 2 === 1) === (c === "second")), "both handlers ran in order: " + changes);
check(changes[changes.length - 2] === "0,3", "DocumentChanged carries where and how much: " + changes);
control.off("DocumentChanged", onChange);
changes = [];
document.Text = "abcd";
check(changes.length > 0 && changes.every(c => c === "second"), "a removed handler stays quiet: " + changes);
control.off("DocumentChanged");
refused(() => control.on("NoSuchEvent", () => {}), 0x80020006, 0x80020006);

host.focus();
const selections = [];
control.on("SelectionChanged", (nStart, nEnd) => selections.push(nStart, nEnd));
control.SetSelection(1, 3);
check(selections.length >= 2 && selections.slice(-2).join() === [control.SelectionStart, control.SelectionEnd].join(),
      "SelectionChanged carries the selection: " + selections);

// A by-reference argument is an object whose value the handler may change; the firer reads it.
control.on("KeyPress", keyAscii => { if (keyAscii.value === 97) keyAscii.value = 98; });
check(host.fireKeyPress(97) === 98 && host.fireKeyPress(99) === 99, "KeyPress's handler answers through its argument");
print("surface: all checks passed");
