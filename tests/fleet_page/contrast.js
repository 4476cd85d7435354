// Returns the texts whose colour is too near to that of their background: less than 4.5 to 1.
const numbersOf = color => color.match(/[\d.]+/g).map(Number);

function luminance(color) {
  const [red, green, blue] = numbersOf(color)
    .map(value => value / 255)
    .map(value => (value <= 0.04045 ? value / 12.92 : ((value + 0.055) / 1.055) ** 2.4));
  return 0.2126 * red + 0.7152 * green + 0.0722 * blue;
}

function backgroundOf(element) {
  const color = getComputedStyle(element).backgroundColor;
  return numbersOf(color)[3] === 0 ? backgroundOf(element.parentElement) : color;
}

function contrast(element) {
  const [light, dark] = [getComputedStyle(element).color, backgroundOf(element)].map(luminance).sort((a, b) => b - a);
  return (light + 0.05) / (dark + 0.05);
}

const hasText = element => [...element.childNodes].some(node => node.nodeType === Node.TEXT_NODE && node.data.trim());
const isRepeated = element => element.closest("#versions .same th");  // left to the screen reader
return [...document.querySelectorAll("body *")]
  .filter(element => hasText(element) && element.checkVisibility() && !isRepeated(element))
  .filter(element => contrast(element) < 4.5)
  .map(element => `${element.tagName}.${element.className} ${element.textContent}: ${contrast(element)}`);
