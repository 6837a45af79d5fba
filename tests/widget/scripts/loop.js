// A handler that never returns: the time limit stops the script inside it, while the call that
// fired the event runs to its end.
document.Text = "<p>looping</p>";
host.focus();
control.on("SelectionChanged", function () {
    for (;;) {}
});
control.SetSelection(2, 4);
print("not reached");
