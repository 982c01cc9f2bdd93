import QtQuick 2.12
import QtQuick.Controls 2.12
import QtQuick.Layouts 1.12
import Shotcut.Controls 1.0 as Shotcut

// The panel of an effect: the items of "head" above a slider with keyframes for each number.
Shotcut.KeyframableFilter {
    id: panel

    // Entries { name, label, lowest, highest, start }: slider values in percent; the effect's parameters are 0 to 1.
    property var numbers: []
    property var texts: [] // names of further parameters, for presets
    property alias head: headRow.data

    function effectValue(number, shown) {
        return (shown - number.lowest) / (number.highest - number.lowest);
    }

    function shownValue(number, value) {
        return Math.round(number.lowest + value * (number.highest - number.lowest));
    }

    function setControls() {
        blockUpdate = true;
        for (var i = 0; i < numbers.length; ++i)
            rows.itemAt(i).show();
        blockUpdate = false;
    }

    function updateAll() {
        for (var i = 0; i < numbers.length; ++i)
            rows.itemAt(i).store(null);
    }

    width: 350
    height: 140
    keyframableParameters: numbers.map(number => number.name)
    startValues: numbers.map(number => effectValue(number, number.start))
    middleValues: numbers.map(number => effectValue(number, number.start))
    endValues: numbers.map(number => effectValue(number, number.start))
    Component.onCompleted: {
        // Not only for new filters: hand-written projects may omit default values.
        for (var number of numbers) {
            if (filter.get(number.name) === '')
                filter.set(number.name, effectValue(number, number.start));
        }
        if (filter.isNew)
            filter.savePreset(preset.parameters);
        setControls();
    }

    GridLayout {
        columns: 4
        anchors.fill: parent
        anchors.margins: 8

        Label {
            text: 'Preset'
            Layout.alignment: Qt.AlignRight
        }

        Shotcut.Preset {
            id: preset

            Layout.columnSpan: 3
            parameters: panel.texts.concat(panel.keyframableParameters)
            onBeforePresetLoaded: resetSimpleKeyframes()
            onPresetSelected: {
                initializeSimpleKeyframes();
                setControls();
            }
        }

        RowLayout {
            id: headRow

            visible: children.length > 0
            Layout.columnSpan: 4
        }

        Repeater {
            id: rows

            model: panel.numbers

            RowLayout {
                function show() {
                    slider.value = shownValue(modelData, filter.getDouble(modelData.name, getPosition()));
                    slider.enabled = isSimpleKeyframesActive();
                    keyframesButton.checked = filter.animateIn <= 0 && filter.animateOut <= 0 && filter.keyframeCount(modelData.name) > 0;
                }

                function store(position) {
                    updateFilter(modelData.name, effectValue(modelData, slider.value), keyframesButton, position);
                }

                Layout.columnSpan: 4

                Label {
                    text: modelData.label
                    horizontalAlignment: Text.AlignRight
                    Layout.preferredWidth: 90
                }

                Shotcut.SliderSpinner {
                    id: slider

                    minimumValue: modelData.lowest
                    maximumValue: modelData.highest
                    suffix: ' %'
                    onValueChanged: store(getPosition())
                }

                Shotcut.UndoButton {
                    onClicked: slider.value = modelData.start
                }

                Shotcut.KeyframesButton {
                    id: keyframesButton

                    onToggled: {
                        toggleKeyframes(checked, modelData.name, effectValue(modelData, slider.value));
                        setControls();
                    }
                }
            }
        }

        Item {
            Layout.fillHeight: true
        }
    }

    Connections {
        function onChanged() { setControls(); }
        function onInChanged() { updateAll(); }
        function onOutChanged() { updateAll(); }
        function onAnimateInChanged() { updateAll(); }
        function onAnimateOutChanged() { updateAll(); }
        function onPropertyChanged(name) { setControls(); }

        target: filter
    }

    Connections {
        function onPositionChanged() { setControls(); }

        target: producer
    }
}
