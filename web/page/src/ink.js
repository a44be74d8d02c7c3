// Lines and regions on canvases, in the colours of the page, at the resolution of the screen.
const colour = (name) => getComputedStyle(document.documentElement).getPropertyValue(name).trim();

function prepare(canvas) {
  const ratio = window.devicePixelRatio || 1;
  const width = Math.max(1, Math.round(canvas.clientWidth * ratio)), height = Math.max(1, Math.round(canvas.clientHeight * ratio));
  if (canvas.width !== width || canvas.height !== height) Object.assign(canvas, { width, height });
  const pen = canvas.getContext('2d');
  pen.setTransform(1, 0, 0, 1, 0, 0);
  pen.clearRect(0, 0, width, height);
  pen.lineJoin = pen.lineCap = 'round';
  return { pen, width, height, ratio };
}

/** Scale and middle that fit a box of the drawing into the canvas, which has y downwards. */
function fitting([xmin, ymin, xmax, ymax], { width, height, ratio }) {
  const margin = 20 * ratio;
  const scale = Math.min((width - 2 * margin) / (xmax - xmin || 1), (height - 2 * margin) / (ymax - ymin || 1));
  const x = width / 2 - (scale * (xmin + xmax)) / 2, y = height / 2 + (scale * (ymin + ymax)) / 2;
  return { X: (p) => x + scale * p, Y: (p) => y - scale * p };
}

const frame = () => new Promise((resolve) => { requestAnimationFrame(resolve); });
const POINTS_AT_ONCE = 30000; // take a few milliseconds

/** Draws the lines of a view; many of them over several frames. Ends early when `isCurrent` says so. */
export async function drawLines(canvas, drawing, hiddenStyle, isCurrent) {
  const area = prepare(canvas);
  const { pen, ratio } = area;
  const { X, Y } = fitting(drawing.extent, area);
  const { coords, lines, hidden } = drawing;
  const strokeAll = async (wanted) => {
    let points = 0;
    pen.beginPath();
    for (let i = 0; i + 1 < lines.length; ++i) {
      if (hidden[i] !== wanted) continue;
      pen.moveTo(X(coords[2 * lines[i]]), Y(coords[2 * lines[i] + 1]));
      for (let p = lines[i] + 1; p < lines[i + 1]; ++p) pen.lineTo(X(coords[2 * p]), Y(coords[2 * p + 1]));
      points += lines[i + 1] - lines[i];
      if (points < POINTS_AT_ONCE) continue;
      pen.stroke();
      await frame();
      if (!isCurrent()) return;
      pen.beginPath();
      points = 0;
    }
    pen.stroke();
  };
  if (hiddenStyle !== 'none') {
    pen.lineWidth = ratio;
    pen.strokeStyle = colour('--hidden');
    pen.setLineDash(hiddenStyle === 'dashed' ? [6 * ratio, 3 * ratio] : []);
    await strokeAll(1);
    if (!isCurrent()) return;
  }
  pen.lineWidth = 1.6 * ratio;
  pen.strokeStyle = colour('--visible');
  pen.setLineDash([]);
  await strokeAll(0);
}

function pathOf({ coords, rings }, { X, Y }) {
  const path = new Path2D();
  for (let r = 0; r + 1 < rings.length; ++r) {
    path.moveTo(X(coords[2 * rings[r]]), Y(coords[2 * rings[r] + 1]));
    for (let p = rings[r] + 1; p < rings[r + 1]; ++p) path.lineTo(X(coords[2 * p]), Y(coords[2 * p + 1]));
    path.closePath();
  }
  return path;
}

/** Draws a result filled over the outlines of the operands. */
export function drawRegions(canvas, box, operands, result) {
  const area = prepare(canvas);
  const { pen, ratio } = area;
  const fit = fitting(box, area);
  if (result) {
    const path = pathOf(result, fit);
    pen.fillStyle = colour('--result');
    pen.fill(path, 'evenodd');
  }
  operands.forEach((operand, i) => {
    pen.strokeStyle = colour(i === 0 ? '--a' : '--b');
    pen.lineWidth = (result ? 1.1 : 1.6) * ratio;
    pen.stroke(pathOf(operand, fit));
  });
}

export function boxOf(regions) {
  const box = [Infinity, Infinity, -Infinity, -Infinity];
  for (const { coords } of regions) {
    for (let i = 0; i < coords.length; i += 2) {
      box[0] = Math.min(box[0], coords[i]);
      box[1] = Math.min(box[1], coords[i + 1]);
      box[2] = Math.max(box[2], coords[i]);
      box[3] = Math.max(box[3], coords[i + 1]);
    }
  }
  return box[0] <= box[2] ? box : [0, 0, 1, 1];
}
