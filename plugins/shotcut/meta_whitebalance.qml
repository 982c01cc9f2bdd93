import QtQuick 2.0
import org.shotcut.qml 1.0

Metadata {
    type: Metadata.Filter
    name: 'Lumvane White Balance'
    keywords: 'color temperature tint'
    mlt_service: 'frei0r.lumvane_whitebalance'
    qml: 'ui_whitebalance.qml'

    keyframes {
        allowAnimateIn: true
        allowAnimateOut: true
        simpleProperties: ['temperature', 'tint']
        parameters: [
            Parameter {
                property: 'temperature'
                name: 'Temperature'
                isCurve: true
                minimum: 0
                maximum: 1
            },
            Parameter {
                property: 'tint'
                name: 'Tint'
                isCurve: true
                minimum: 0
                maximum: 1
            }
        ]
    }
}
