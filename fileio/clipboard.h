#ifndef VESK_FILEIO_CLIPBOARD_H
#define VESK_FILEIO_CLIPBOARD_H

// The clipboard: copies of objects outside the world, owned by it. It is offered to other programs
// as the text of a model file, which is made when one of them asks; a paste takes such a text from
// another running instance. A pasted text is read as a model file and never evaluated.

// "clipboard_copy": the selected objects; in surface and vertex mode one object for each owner of
// whole surfaces.
void command_clipboard_copy();

// "clipboard_cut": copies, then deletes the selection. Undo "cut".
void command_clipboard_cut();

// "clipboard_holds": returns 1 while objects that were copied here can be pasted.
void command_clipboard_holds();

// "clipboard_paste": copies under the world, selected. Undo "paste".
void command_clipboard_paste();

void clipboard_reset_for_test();

#endif
