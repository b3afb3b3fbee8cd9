// Shows layered Photoshop files to two readers from npm and compares with what they are to be read as:
// interop-readers.mjs FOLDER, in which the readers are installed and interop_files has written. Prints each difference.
import { readFileSync } from "node:fs";
import { createRequire } from "node:module";
import { join } from "node:path";
import { pathToFileURL } from "node:url";

const folder = process.argv[2];
const require = createRequire(join(folder, "package.json"));
const file = readFileSync(join(folder, "layered.psd"));
const layers = readFileSync(join(folder, "layers.tsv"), "utf8").trimEnd().split("\n").map((line) => line.split("\t"));
let isDifferent = false;

function expect(what, wanted, got) {
    if (wanted === got) return;
    console.log(`${what}: expected ${wanted}, got ${got}`);
    isDifferent = true;
}

// RGBA against ours, which is multiplied by alpha; whoever takes white off rounds once more than we do.
function comparePixels(what, rgba, name, multiplied) {
    const wanted = readFileSync(join(folder, name));
    expect(`${what}: bytes`, wanted.length, rgba.length);
    let most = 0;
    for (let i = 0; i < wanted.length; ++i) {
        const alpha = rgba[i | 3];
        const got = (i & 3) === 3 ? alpha : multiplied(rgba[i], alpha);
        most = Math.max(most, Math.abs(got - wanted[i]));
    }
    if (most > 1) expect(`${what}: difference`, 0, most);
}
const fromStraight = (color, alpha) => (color * alpha) / 255;
const fromWhite = (color, alpha) => color + alpha - 255;

const { readPsd, initializeCanvas } = require("ag-psd");
initializeCanvas(
    () => { throw new Error("no canvas"); },
    (width, height) => ({ width, height, data: new Uint8ClampedArray(width * height * 4) }));
const ag = readPsd(file, { useImageData: true, skipThumbnail: true });
comparePixels("ag-psd: finished picture", ag.imageData.data, "finished.rgba", fromStraight);
expect("ag-psd: layers", layers.map((layer) => layer[0]).join(), ag.children.map((child) => child.name).join());
ag.children.forEach((child, i) => {
    if (child.imageData) comparePixels(`ag-psd: ${child.name}`, child.imageData.data, `layer-${i}.rgba`, fromStraight);
});

const { default: Psd } = await import(pathToFileURL(require.resolve("@webtoon/psd")).href);
const webtoon = (Psd.default ?? Psd).parse(file.buffer.slice(file.byteOffset, file.byteOffset + file.byteLength));
// It gives the picture as it is stored.
comparePixels("@webtoon/psd: finished picture", await webtoon.composite(), "finished.rgba", fromWhite);
for (const [i, [name]] of layers.entries()) {
    const layer = webtoon.layers.find((found) => found.name === name);
    if (!layer) expect("@webtoon/psd: layer", name, undefined);
    else if (layer.width * layer.height > 0)
        comparePixels(`@webtoon/psd: ${name}`, await layer.composite(false, false), `layer-${i}.rgba`, fromStraight);
}
process.exit(isDifferent ? 1 : 0);
