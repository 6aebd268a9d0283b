<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="en" sourcelanguage="en">
<context>
    <name>QObject</name>
    <message>
        <source>it is too large</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>it holds no clouds</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>line %1: %2</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>%1: no cloud lies in it</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>All Files (*)</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Clouds (*.xml)</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Pictures (%1)</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>orvosky::window::AttributeControl</name>
    <message>
        <source>
Connected: %1</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>
Has keys</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>
Locked</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Reset to Default</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Copy Value</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Paste Value</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Set Key</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Delete Keys</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Break Connection</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Select %1</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Unlock</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Lock</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>up</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Degrees above the horizon</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>az</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Degrees clockwise from -Z, seen from above</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Colour of %1</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Browse</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Choose a File</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>There is no such file in the project.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>It lies outside of the project&apos;s build folder: the game will not find it.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>What was copied is no value of %1.</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>orvosky::window::AttributePage</name>
    <message>
        <source>More</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Extra Attributes</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>orvosky::window::AttributePanel</name>
    <message>
        <source>Nothing is selected.</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>orvosky::window::CloudPanel</name>
    <message>
        <source>Add to Sky</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Use in Dome</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The cloud libraries of the project</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Shows the clouds of another file</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Makes the chosen cloud one of the scene&apos;s, to be edited; a double click does, too</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Fills the selected dome, else the first one, with the clouds of this library</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Save...</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Saves the selected clouds of the scene, else all, as a library</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Clouds</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Clouds (*.xml)</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Save Clouds</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Cloud %1</source>
        <translation type="unfinished"></translation>
    </message>
    <message numerus="yes">
        <source>%n ellipsoid(s)</source>
        <translation>
            <numerusform>%n ellipsoid</numerusform>
            <numerusform>%n ellipsoids</numerusform>
        </translation>
    </message>
    <message>
        <source>No clouds lie here.</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>orvosky::window::Document</name>
    <message>
        <source>untitled</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Unsaved Work</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Save the changes to %1?</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>the untitled scene</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Do Not Save</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Save As</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Maya ASCII (*.ma)</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Open</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Scenes (*.ma *.mel)</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>%1 was not saved when it was last edited. The work up to %2 was kept.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Recover</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Discard</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Later</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>orvosky::window::ExportDialog</name>
    <message>
        <source>Export</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Browse</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Check Again</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Close</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Export to</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Skies (*.atmos)</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>A click selects %1</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>%1, %2 of cloud data</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Written: </source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The sky cannot be exported yet.</source>
        <translation type="unfinished"></translation>
    </message>
    <message numerus="yes">
        <source>The sky can be exported; %n thing(s) may not be meant so.</source>
        <translation>
            <numerusform>The sky can be exported; one thing may not be meant so.</numerusform>
            <numerusform>The sky can be exported; %n things may not be meant so.</numerusform>
        </translation>
    </message>
    <message>
        <source>Nothing is wrong with the sky.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Exported.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Nothing was exported.</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>orvosky::window::HistoryPanel</name>
    <message>
        <source>As opened</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>orvosky::window::MainWindow</name>
    <message>
        <source>Shelf</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Outliner</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Attributes</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Script Editor</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>History</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Clouds</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Sun by Place and Time</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Working; Esc stops it.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>1/%1 size while moving    %2 ms</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>%1 ms</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Export</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Tools</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>%1 (%2)</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Select</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Move</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Rotate</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Scale</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Sun</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Shows the sun&apos;s ring always; it is dragged over the sky whenever the pointer is near</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Nothing is selected.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>File</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>New</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>New from Preset</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Open...</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Open Recent</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Save</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Save As...</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Export...</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Save Picture...</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Save Picture</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Pictures (*.png *.jpg *.tif *.exr)</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Copy Picture</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Quit</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Edit</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Undo</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Redo</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Duplicate</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Delete</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Hide</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Set Key</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Select Nothing</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Display</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Frame Selection</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Frame All</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Look Up</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Type MEL</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Move Along Own Axes</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>View Only</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Help</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Alt + left tumbles, Alt + middle tracks, Alt + right or the wheel dollies. Middle turns the head, Shift + middle moves. F frames the selection, A everything, U looks up.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>About</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Orvo sky toolkit %1</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The camera to look through</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Look up</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Turns the eyes to the sky above; again, and they come back (U)</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>MEL: the last action, and a place to type one</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>%1 - %2 - Orvo sky</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Save Pictures of the Range...</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Save Pictures: # Is a Digit of the Frame</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Frame of a Picture</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Size of Text and Icons</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Help on What Is Under the Pointer</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>None</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>16 : 9</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>2.39 : 1</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>4 : 3</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>1 : 1</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The window has this size when it is opened next.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>As the Desktop</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>%1 %</source>
        <translation type="unfinished"></translation>
    </message>
    <message numerus="yes">
        <source>Saved %n picture(s).</source>
        <translation>
            <numerusform>Saved one picture.</numerusform>
            <numerusform>Saved %n pictures.</numerusform>
        </translation>
    </message>
    <message>
        <source>Stop</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Stops what is running (Esc)</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>One scene is open at a time: of the %1 files that were dropped none was opened.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>What was dropped is no file of this machine.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>%1 is no scene (.ma, .mel). Pictures and libraries are dropped onto the field that names them.</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>orvosky::window::OutlinerModel</name>
    <message>
        <source>Shown in the view; a click hides it and what is below it</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>
%1 is missing</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>orvosky::window::OutlinerPanel</name>
    <message>
        <source>Search</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Rename</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Duplicate</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Delete</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Hide</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Show</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>End Template</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Template</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Expand All Below</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Shapes and Default Cameras</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Sky Nodes First</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>orvosky::window::ScriptPanel</name>
    <message>
        <source>MEL; Ctrl+Enter runs it, or what is selected of it</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Run</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Runs what is written, or what is selected of it (Ctrl+Enter)</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Save Session...</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Saves what was done since the scene was opened as a script</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Clear</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Empties the upper part</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Save Session</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>MEL (*.mel)</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>orvosky::window::StartPage</name>
    <message>
        <source>Begin with a sky</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Open a scene...</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Begin with nothing</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Recent</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>orvosky::window::SunPanel</name>
    <message>
        <source>Latitude</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Degrees north; south is negative</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Longitude</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Degrees east; west is negative</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The years for which the sun&apos;s place is known to a hundredth of a degree</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Date</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Time Zone</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Hours that the clock is before UTC; 2 is central European summer time</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>North</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Where north lies in the scene: degrees clockwise from -Z, seen from above</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Hours by the clock</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The colour of sunlight, from below the horizon to overhead; ticked nodes get it</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Node</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Sun</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Colour</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Point the Sun</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Points the sun of what is ticked, as every change above does</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Key the Day</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Keys the sun&apos;s course from midnight to midnight over the range that is played</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>%1 deg up, %2 deg from north</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>orvosky::window::TimeBar</name>
    <message>
        <source>To the first frame</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Plays the range over and over; again, and it stops</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>To the last frame</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The current frame</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The first frame that is played</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The last frame that is played</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Sets a key of what has keys of the selection (S); the menu of an attribute&apos;s label sets the first</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>%1 fps</source>
        <translation type="unfinished"></translation>
    </message>
</context>
</TS>
