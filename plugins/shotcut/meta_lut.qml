import QtQuick 2.0
import org.shotcut.qml 1.0

Metadata {
    type: Metadata.Filter
    name: 'Lumvane LUT'
    keywords: 'look grade color cube 3dl'
    mlt_service: 'frei0r.lumvane_lut'
    qml: 'ui_lut.qml'

    keyframes {
        allowAnimateIn: true
        allowAnimateOut: true
        simpleProperties: ['strength']
        parameters: [
            Parameter {
                property: 'strength'
                name: 'Strength'
                isCurve: true
                minimum: 0
                maximum: 1
            }
        ]
    }
}
