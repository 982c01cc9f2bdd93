Panel {
    numbers: [
        { name: 'temperature', label: 'Temperature', lowest: -100, highest: 100, start: 0 },
        { name: 'tint', label: 'Tint', lowest: -100, highest: 100, start: 0 }
    ]
}
