// Draws ink as it grows: each update adds the new points to the picture, unless they do not continue it.
(() => {
  'use strict';

  const STRONGEST_PRESSURE = 1023;
  const FINEST_NEEDED = 2; // canvas pixels per CSS pixel: hides the beads where the pieces of a line overlap

  /** A light touch still leaves a hairline. */
  const swelling = (pressure) => 0.3 + 0.9 * Math.min(pressure / STRONGEST_PRESSURE, 1);

  const middle = (a, b) => ({ x: (a.x + b.x) / 2, y: (a.y + b.y) / 2 });

  class InkView {
    #canvas;
    #context;
    #size = { width: 800, height: 480 };
    #pen = { width: 3, color: '#000', pressure: true };
    #points = [];
    #drawn = 0;

    constructor(canvas) {
      this.#canvas = canvas;
      this.#context = canvas.getContext('2d');
      new ResizeObserver(() => this.#redraw()).observe(canvas);
    }

    /** The pad's size in its own pixels: the canvas shows all of it. */
    set size(size) {
      this.#size = size;
      this.#canvas.style.aspectRatio = `${size.width} / ${size.height}`;
      this.#redraw();
    }

    set pen(pen) {
      this.#pen = pen;
      this.#redraw();
    }

    show(points) {
      const last = this.#points[this.#drawn - 1];
      const same = points[this.#drawn - 1];
      const continues = this.#drawn === 0 ||
        (same && same.x === last.x && same.y === last.y && same.time === last.time);
      // Once the pen is lifted, the line that ended half-way to the last point is drawn to its end.
      if (continues && same?.strokeEnd !== last?.strokeEnd) this.#drawn -= 1;
      this.#points = points;
      if (continues) this.#drawRest();
      else this.#redraw();
    }

    #redraw() {
      const { clientWidth, clientHeight } = this.#canvas;
      const fineness = Math.max(devicePixelRatio, FINEST_NEEDED);
      this.#canvas.width = Math.round(clientWidth * fineness);
      this.#canvas.height = Math.round(clientHeight * fineness);
      this.#drawn = 0;
      this.#drawRest();
    }

    #drawRest() {
      const scale = this.#canvas.width / this.#size.width;
      this.#context.setTransform(scale, 0, 0, scale, 0, 0);
      this.#context.strokeStyle = this.#context.fillStyle = this.#pen.color;
      this.#context.lineCap = 'round';
      while (this.#drawn < this.#points.length) this.#drawPoint(this.#drawn++);
    }

    /** The line runs through the middles between the points and bends at the points; the middles join smoothly. */
    #drawPoint(index) {
      const point = this.#points[index];
      const isStart = index === 0 || this.#points[index - 1].strokeEnd;
      const before = isStart ? point : this.#points[index - 1];
      const isSecond = index === 1 || this.#points[index - 2]?.strokeEnd;
      const from = isStart || isSecond ? before : middle(this.#points[index - 2], before);
      const to = point.strokeEnd ? point : middle(before, point);
      this.#context.beginPath();
      this.#context.lineWidth = this.#lineWidth((before.pressure + point.pressure) / 2);
      this.#context.moveTo(from.x, from.y);
      this.#context.quadraticCurveTo(before.x, before.y, to.x, to.y);
      if (point.strokeEnd) this.#context.lineTo(point.x, point.y);
      this.#context.stroke();
    }

    #lineWidth(pressure) {
      const { width, pressure: follows } = this.#pen;
      return Math.max(width * (follows ? swelling(pressure) : 1), 0.6);
    }
  }

  Object.assign(globalThis.Demo, { InkView, STRONGEST_PRESSURE });
})();
