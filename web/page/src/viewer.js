// The model in three dimensions, in parallel projection or from an eye as its drawing is. Tells when it was let go.
import {
  BufferAttribute, BufferGeometry, DirectionalLight, DoubleSide, HemisphereLight, Mesh, MeshLambertMaterial, OrthographicCamera, PerspectiveCamera, Scene,
  Vector3, WebGLRenderer,
} from 'three';
import { OrbitControls } from 'three/examples/jsm/controls/OrbitControls.js';

const SETTLED = 180; // ms after the last key or turn of the wheel
const STEP = Math.PI / 24;
const FAR = 4; // distance of the eye, in radii of the model
const VIEWS = { front: [0, 1, 0], back: [0, -1, 0], left: [1, 0, 0], right: [-1, 0, 0], top: [0, 0, -1], bottom: [0, 0, 1], iso: [-1, 1, -1] };

export class Viewer {
  #element;
  #renderer = new WebGLRenderer({ antialias: true, alpha: true }); // throws where there is none
  #scene = new Scene();
  #camera = new OrthographicCamera(-1, 1, 1, -1);
  #eye = new PerspectiveCamera();
  #isPerspective = false;
  #controls;
  #light = new DirectionalLight(0xffffff, 2.2);
  #mesh;
  #radius = 1;
  #middle = [0, 0, 0];
  #half = [1, 1, 1]; // of the model's box
  #isYUp = false;
  #timer;
  #onSettled;

  constructor(element, onSettled) {
    this.#element = element;
    element.append(this.#renderer.domElement);
    this.#scene.add(new HemisphereLight(0xffffff, 0x8899aa, 1.6), this.#camera);
    this.#camera.add(this.#light);
    this.#light.position.set(-0.5, 0.8, 1);
    this.#onSettled = onSettled;
    new ResizeObserver(() => this.#resize()).observe(element);
  }

  /** Points and triangles of a model, and which axis points up. */
  show({ points, triangles }, { low, high, axes }) {
    const middle = low.map((x, k) => (x + high[k]) / 2);
    this.#middle = middle;
    this.#radius = Math.hypot(...high.map((x, k) => x - low[k])) / 2 || 1;
    this.#half = high.map((x, k) => (x - low[k]) / 2);
    this.stand(axes);
    const positions = new Float32Array(points.length);
    for (let i = 0; i < points.length; ++i) positions[i] = points[i] - middle[i % 3];
    const geometry = new BufferGeometry();
    geometry.setAttribute('position', new BufferAttribute(positions, 3));
    geometry.setIndex(new BufferAttribute(triangles, 1));
    this.clear();
    const solid = getComputedStyle(document.documentElement).getPropertyValue('--solid').trim();
    const material = new MeshLambertMaterial({ color: solid, flatShading: true, side: DoubleSide });
    this.#mesh = new Mesh(geometry, material);
    this.#scene.add(this.#mesh);
    this.#resize();
  }

  /** Puts the model upright: 'y' or 'z' points up. */
  stand(axes) {
    this.#isYUp = axes === 'y';
    this.#camera.up.set(0, this.#isYUp ? 1 : 0, this.#isYUp ? 0 : 1);
    this.#control();
  }

  clear() {
    if (!this.#mesh) return;
    this.#scene.remove(this.#mesh);
    this.#mesh.geometry.dispose();
    this.#mesh.material.dispose();
    this.#mesh = undefined;
  }

  look(name) {
    const [x, y, z] = VIEWS[name];
    const up = Math.abs(z) === 1 ? [0, 1, 0] : [0, 0, 1];
    const turned = ([a, b, c]) => (this.#isYUp ? new Vector3(a, c, -b) : new Vector3(a, b, c));
    // The controls never look quite along the axis that points up; from there this tells what is drawn upwards.
    const direction = turned([x, y, z]).normalize().addScaledVector(turned(up), Math.abs(z) === 1 ? 1e-5 : 0);
    this.#camera.zoom = 1;
    this.#camera.position.copy(direction).multiplyScalar(-4 * this.#radius);
    this.#controls.target.set(0, 0, 0);
    this.#resize();
    this.#fill();
  }

  // Zooms so that the model's box just fits as it is seen from here.
  #fill() {
    this.#camera.updateMatrixWorld();
    const { elements } = this.#camera.matrixWorld;
    const reach = (column) => this.#half.reduce((sum, h, k) => sum + h * Math.abs(elements[4 * column + k]), 0) || 1;
    this.#camera.zoom = 0.9 * Math.min(this.#camera.right / reach(0), this.#camera.top / reach(1));
    this.#camera.updateProjectionMatrix();
    this.#render();
  }

  /** What is looked at, as a view of the library. */
  view() {
    this.#camera.updateMatrixWorld();
    const { elements } = this.#camera.matrixWorld;
    const axis = (k) => elements.slice(4 * k, 4 * k + 3).map((x) => (Math.abs(x) < 1e-4 ? 0 : x));
    const up = axis(1), back = axis(2);
    if (!this.#isPerspective) return { name: 'view', direction: back.map((x) => -x), up };
    const at = this.#controls.target.toArray().map((x, k) => x + this.#middle[k]);
    return { name: 'view', eye: at.map((x, k) => x + FAR * this.#radius * back[k]), at, up };
  }

  setPerspective(isOn) {
    if (isOn === this.#isPerspective) return;
    this.#isPerspective = isOn;
    this.#render();
  }

  // What the parallel camera looks at, from the eye: across the target both show the same.
  #fromEye() {
    const { right, top, zoom, quaternion } = this.#camera, distance = FAR * this.#radius;
    Object.assign(this.#eye, { fov: (360 / Math.PI) * Math.atan(top / zoom / distance), aspect: right / top, near: distance / 50, far: 10 * distance });
    this.#eye.quaternion.copy(quaternion);
    this.#eye.position.set(0, 0, distance).applyQuaternion(quaternion).add(this.#controls.target);
    this.#eye.updateProjectionMatrix();
    return this.#eye;
  }

  // The controls keep the axis that points up from when they are made.
  #control() {
    this.#controls?.dispose();
    this.#controls = new OrbitControls(this.#camera, this.#renderer.domElement);
    this.#controls.addEventListener('change', () => this.#render());
    this.#controls.addEventListener('end', () => this.#settle());
  }

  #settle() {
    clearTimeout(this.#timer);
    this.#timer = setTimeout(this.#onSettled, SETTLED);
  }

  /** Turns or zooms as a key asks for; tells whether it is such a key. */
  turn(key, isShifted) {
    const turns = { ArrowLeft: [-1, 0], ArrowRight: [1, 0], ArrowUp: [0, -1], ArrowDown: [0, 1] };
    const step = isShifted ? STEP / 4 : STEP;
    if (turns[key]) {
      const [around, over] = turns[key];
      const up = this.#camera.up.clone();
      const offset = this.#camera.position.clone().sub(this.#controls.target);
      const angle = offset.angleTo(up);
      const next = Math.min(Math.max(angle + over * step, 1e-5), Math.PI - 1e-5);
      const axis = new Vector3().setFromMatrixColumn(this.#camera.matrixWorld, 0);
      offset.applyAxisAngle(axis, next - angle).applyAxisAngle(up, around * step);
      this.#camera.position.copy(this.#controls.target).add(offset);
    } else if (key === '+' || key === '=' || key === '-') {
      this.#camera.zoom *= key === '-' ? 1 / 1.2 : 1.2;
      this.#camera.updateProjectionMatrix();
    } else {
      return false;
    }
    this.#controls.update();
    this.#render();
    this.#settle();
    return true;
  }

  #resize() {
    const { clientWidth: width, clientHeight: height } = this.#element;
    if (width === 0 || height === 0) return;
    this.#renderer.setPixelRatio(window.devicePixelRatio);
    this.#renderer.setSize(width, height, false);
    const half = 1.08 * this.#radius, aspect = width / height;
    const [x, y] = aspect > 1 ? [half * aspect, half] : [half, half / aspect];
    Object.assign(this.#camera, { left: -x, right: x, top: y, bottom: -y, near: 0.01 * this.#radius, far: 10 * this.#radius });
    this.#camera.updateProjectionMatrix();
    this.#controls?.update();
    this.#render();
  }

  #render() {
    this.#renderer.render(this.#scene, this.#isPerspective ? this.#fromEye() : this.#camera);
  }
}
