import QtQuick 2.0
import org.shotcut.qml 1.0

Metadata {
    type: Metadata.Filter
    name: 'Lumvane Clarity'
    keywords: 'local contrast detail color'
    mlt_service: 'frei0r.lumvane_clarity'
    qml: 'ui_clarity.qml'

    keyframes {
        allowAnimateIn: true
        allowAnimateOut: true
        simpleProperties: ['intensity', 'saturation']
        parameters: [
            Parameter {
                property: 'intensity'
                name: 'Intensity'
                isCurve: true
                minimum: 0
                maximum: 1
            },
            Parameter {
                property: 'saturation'
                name: 'Saturation'
                isCurve: true
                minimum: 0
                maximum: 1
            }
        ]
    }
}
