import QtQuick 2.12
import QtQuick.Controls 2.12
import QtQuick.Dialogs 1.2
import QtQuick.Layouts 1.12
import Shotcut.Controls 1.0 as Shotcut
import org.shotcut.qml 1.0 as Shotcut

Panel {
    id: panel

    function showFile() {
        lut.url = filter.get('filename') || filter.get('path');
        fileName.text = lut.exists() ? lut.fileName : 'No LUT file';
        tip.text = lut.exists() ? lut.filePath : 'The picture is unchanged until a .cube or .3dl file is chosen.';
    }

    texts: ['filename']
    numbers: [{ name: 'strength', label: 'Strength', lowest: 0, highest: 100, start: 100 }]
    Component.onCompleted: showFile()
    head: [
        Shotcut.Button {
            text: 'Open...'
            onClicked: dialog.open()
        },
        Label {
            id: fileName

            Layout.fillWidth: true

            Shotcut.HoverTip {
                id: tip
            }
        }
    ]

    Shotcut.File {
        id: lut
    }

    FileDialog {
        id: dialog

        title: 'Open LUT File'
        modality: application.dialogModality
        folder: 'file:///' + settings.openPath
        nameFilters: ['LUT files (*.cube *.3dl *.CUBE *.3DL)', 'All files (*)']
        onAccepted: {
            lut.url = dialog.fileUrl;
            settings.openPath = lut.path;
            filter.set('filename', lut.filePath);
            panel.showFile();
        }
    }

    Connections {
        function onChanged() { panel.showFile(); } // by a preset or undo

        target: filter
    }
}
