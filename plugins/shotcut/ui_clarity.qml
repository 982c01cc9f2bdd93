Panel {
    numbers: [
        { name: 'intensity', label: 'Intensity', lowest: 0, highest: 100, start: 0 },
        { name: 'saturation', label: 'Saturation', lowest: -100, highest: 100, start: 0 }
    ]
}
