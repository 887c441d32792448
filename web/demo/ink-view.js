// Draws ink as it grows: each update adds the new points to the picture, unless they do not continue it.
(() => {
  'use strict';

  const STRONGEST_PRESSURE = 1023;
  const FINEST_NEEDED = 2; // canvas pixels per CSS pixel: hides the beads where the pieces of a line overlap

  /** A light touch still leaves a hairline. */
  const swelling = (pressure) => 0.3 + 0.9 * Math.min(pressure / STRONGEST_PRESSURE, 1);

  const middle = (a, b) => ({ x: (a.x + b.x) / 2, y: (a.y + b.y) / 2 });

  const isSamePoint = (a, b) => a.x === b.x && a.y === b.y && a.time === b.time;

  /** `size` of the pad in its own pixels: the canvas shows all of it. */
  function createInkView(canvas, size) {
    const context = canvas.getContext('2d');
    let pen = { width: 3, color: '#000', pressure: true };
    let points = [];
    let drawn = 0;

    function lineWidth(pressure) {
      return Math.max(pen.width * (pen.pressure ? swelling(pressure) : 1), 0.6);
    }

    /** The line runs through the middles between the points and bends at the points; the middles join smoothly. */
    function drawPoint(index) {
      const point = points[index];
      const isStart = index === 0 || points[index - 1].strokeEnd;
      const before = isStart ? point : points[index - 1];
      const isSecond = index === 1 || isStart || points[index - 2].strokeEnd;
      const from = isSecond ? before : middle(points[index - 2], before);
      const to = point.strokeEnd ? point : middle(before, point);
      context.beginPath();
      context.lineWidth = lineWidth((before.pressure + point.pressure) / 2);
      context.moveTo(from.x, from.y);
      context.quadraticCurveTo(before.x, before.y, to.x, to.y);
      if (point.strokeEnd) context.lineTo(point.x, point.y);
      context.stroke();
    }

    function drawRest() {
      const scale = canvas.width / size.width;
      context.setTransform(scale, 0, 0, scale, 0, 0);
      context.strokeStyle = context.fillStyle = pen.color;
      context.lineCap = 'round';
      while (drawn < points.length) drawPoint(drawn++);
    }

    function redraw() {
      canvas.width = Math.round(canvas.clientWidth * Math.max(window.devicePixelRatio, FINEST_NEEDED));
      canvas.height = Math.round(canvas.width * size.height / size.width); // the element takes its shape from these
      drawn = 0;
      drawRest();
    }

    function show(next) {
      const last = points[drawn - 1];
      const same = next[drawn - 1];
      const continues = drawn === 0 || (same !== undefined && isSamePoint(same, last));
      // Once the pen is lifted, the line that ended half-way to the last point is drawn to its end.
      if (drawn > 0 && continues && same.strokeEnd !== last.strokeEnd) drawn -= 1;
      points = next;
      if (continues) drawRest();
      else redraw();
    }

    function setPen(next) {
      pen = next;
      redraw();
    }

    window.Demo.onResize(canvas, redraw);
    redraw();
    return { show, setPen };
  }

  Object.assign(window.Demo, { createInkView, STRONGEST_PRESSURE });
})();
