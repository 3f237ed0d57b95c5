<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="en" sourcelanguage="en">
<context>
    <name>GuiText</name>
    <message>
        <source>No plug-in is loaded.</source>
        <translation>No plug-in is loaded.</translation>
    </message>
    <message>
        <source>Plug-ins loaded:</source>
        <translation>Plug-ins loaded:</translation>
    </message>
    <message>
        <source>Galley %1</source>
        <translation>Galley %1</translation>
    </message>
    <message>
        <source>Opens IDML documents and finds the fonts they miss.</source>
        <translation>Opens IDML documents and finds the fonts they miss.</translation>
    </message>
    <message>
        <source>© 2026 The Galley and Vellumine developers. All rights reserved; no licence for redistribution has been chosen yet.</source>
        <translation>© 2026 The Galley and Vellumine developers. All rights reserved; no licence for redistribution has been chosen yet.</translation>
    </message>
    <message>
        <source>Built with Qt %1.</source>
        <translation>Built with Qt %1.</translation>
    </message>
    <message>
        <source>About Galley</source>
        <translation>About Galley</translation>
    </message>
    <message>
        <source>Galley</source>
        <translation>Galley</translation>
    </message>
    <message>
        <source>%1[*] — Galley</source>
        <translation>%1[*] — Galley</translation>
    </message>
    <message>
        <source>IDML documents (*.idml)</source>
        <translation>IDML documents (*.idml)</translation>
    </message>
    <message>
        <source>Do you want to save the changes to “%1”?</source>
        <translation>Do you want to save the changes to “%1”?</translation>
    </message>
    <message>
        <source>Your changes will be lost if you don&apos;t save them.</source>
        <translation>Your changes will be lost if you don&apos;t save them.</translation>
    </message>
    <message>
        <source>Open</source>
        <translation>Open</translation>
    </message>
    <message>
        <source>Save As</source>
        <translation>Save As</translation>
    </message>
    <message>
        <source>1 run of text</source>
        <translation>1 run of text</translation>
    </message>
    <message>
        <source>%1 runs of text</source>
        <translation>%1 runs of text</translation>
    </message>
    <message>
        <source>%1 in composite fonts</source>
        <translation>%1 in composite fonts</translation>
    </message>
    <message>
        <source>styles: %1</source>
        <translation>styles: %1</translation>
    </message>
    <message>
        <source>Find Font</source>
        <translation>Find Font</translation>
    </message>
    <message>
        <source>&amp;Fonts in the document:</source>
        <translation>&amp;Fonts in the document:</translation>
    </message>
    <message>
        <source>Fonts in the document</source>
        <translation>Fonts in the document</translation>
    </message>
    <message>
        <source>Font</source>
        <translation>Font</translation>
    </message>
    <message>
        <source>Status</source>
        <translation>Status</translation>
    </message>
    <message>
        <source>Used in</source>
        <translation>Used in</translation>
    </message>
    <message>
        <source>&amp;Replace…</source>
        <translation>&amp;Replace…</translation>
    </message>
    <message>
        <source>Missing</source>
        <translation>Missing</translation>
    </message>
    <message>
        <source>Installed</source>
        <translation>Installed</translation>
    </message>
    <message>
        <source>Nothing was replaced: its text is set in composite fonts.</source>
        <translation>Nothing was replaced: its text is set in composite fonts.</translation>
    </message>
    <message>
        <source>Nothing was replaced: only styles name it; tick “Also in styles” to redefine them.</source>
        <translation>Nothing was replaced: only styles name it; tick “Also in styles” to redefine them.</translation>
    </message>
    <message>
        <source>&amp;File</source>
        <translation>&amp;File</translation>
    </message>
    <message>
        <source>&amp;Open…</source>
        <translation>&amp;Open…</translation>
    </message>
    <message>
        <source>Open &amp;Recent</source>
        <translation>Open &amp;Recent</translation>
    </message>
    <message>
        <source>&amp;Save</source>
        <translation>&amp;Save</translation>
    </message>
    <message>
        <source>Save &amp;As…</source>
        <translation>Save &amp;As…</translation>
    </message>
    <message>
        <source>&amp;Close</source>
        <translation>&amp;Close</translation>
    </message>
    <message>
        <source>&amp;Quit</source>
        <translation>&amp;Quit</translation>
    </message>
    <message>
        <source>&amp;Type</source>
        <translation>&amp;Type</translation>
    </message>
    <message>
        <source>&amp;Find Font…</source>
        <translation>&amp;Find Font…</translation>
    </message>
    <message>
        <source>&amp;Help</source>
        <translation>&amp;Help</translation>
    </message>
    <message>
        <source>&amp;About Galley</source>
        <translation>&amp;About Galley</translation>
    </message>
    <message>
        <source>No recent documents</source>
        <translation>No recent documents</translation>
    </message>
    <message>
        <source>&amp;Clear List</source>
        <translation>&amp;Clear List</translation>
    </message>
    <message>
        <source>Opening %1…</source>
        <translation>Opening %1…</translation>
    </message>
    <message>
        <source>Opened %1</source>
        <translation>Opened %1</translation>
    </message>
    <message>
        <source>No document</source>
        <translation>No document</translation>
    </message>
    <message>
        <source>All fonts installed</source>
        <translation>All fonts installed</translation>
    </message>
    <message>
        <source>1 missing font</source>
        <translation>1 missing font</translation>
    </message>
    <message>
        <source>%1 missing fonts</source>
        <translation>%1 missing fonts</translation>
    </message>
    <message>
        <source>Replace Font</source>
        <translation>Replace Font</translation>
    </message>
    <message>
        <source>Replace “%1” with:</source>
        <translation>Replace “%1” with:</translation>
    </message>
    <message>
        <source>Search installed fonts</source>
        <translation>Search installed fonts</translation>
    </message>
    <message>
        <source>Installed fonts</source>
        <translation>Installed fonts</translation>
    </message>
    <message>
        <source>Preview</source>
        <translation>Preview</translation>
    </message>
    <message>
        <source>Also in &amp;styles (redefine the styles that name it)</source>
        <translation>Also in &amp;styles (redefine the styles that name it)</translation>
    </message>
    <message>
        <source>&amp;Replace</source>
        <translation>&amp;Replace</translation>
    </message>
    <message>
        <source>The quick brown fox jumps over the lazy dog</source>
        <translation>The quick brown fox jumps over the lazy dog</translation>
    </message>
    <message>
        <source>1 style</source>
        <translation>1 style</translation>
    </message>
    <message>
        <source>%1 styles</source>
        <translation>%1 styles</translation>
    </message>
    <message>
        <source>%1 and %2</source>
        <translation>%1 and %2</translation>
    </message>
    <message>
        <source>Replaced %1 by %2 in %3.</source>
        <translation>Replaced %1 by %2 in %3.</translation>
    </message>
    <message>
        <source>Saved %1</source>
        <translation>Saved %1</translation>
    </message>
</context>
</TS>
